#pragma once

#include <cstdio>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>

#include "zyl/mutex.h"

namespace sim {

/// The story of a run: what the simulated appliance saw from outside the daemon, one line an event:
///
///   <CLOCK_MONOTONIC in microseconds> TAB <actor> TAB <text> NEWLINE
///
/// Actors are "property", "driver", "engine", "splash", "hardware", "panel", "reset", "log" and "appliance". Any
/// thread.
class story_t {
 public:
  /// A story that nobody reads.
  story_t() = default;

  /// Appends to `path`; "-" is standard output. Throws `std::system_error` if it cannot be opened.
  explicit story_t(const std::string& path);

  /// Writes one line and flushes it. Control characters in `text` become blanks, so that a line stays a line.
  void tell(std::string_view actor, std::string_view text) { tell(actor, text, {}); }

  /// The same of a text in pieces.
  void tell(std::string_view actor, std::string_view text, std::initializer_list<std::string_view> more);

 private:
  struct closer_t {
    void operator()(std::FILE* file) const;
  };

  zyl::mutex_t mutex;
  std::unique_ptr<std::FILE, closer_t> file ZYL_GUARDED_BY(mutex);
  /// The line that is written, for its memory.
  std::string line ZYL_GUARDED_BY(mutex);
};

/// `text` with each control character replaced by a blank.
std::string one_line(std::string_view text);

}  // namespace sim
