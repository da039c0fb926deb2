#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "sim/descriptor.h"

namespace sim {

/// One line of a story.
struct story_line_t {
  int64_t time_us = 0;  ///< CLOCK_MONOTONIC
  std::string actor;
  std::string text;
};

/// Reads a story while it is written, from a file or from a named pipe. One thread.
class story_reader_t {
 public:
  /// Throws `std::system_error` if `path` cannot be opened. A pipe need not have a writer yet.
  explicit story_reader_t(const std::string& path);

  /// The whole lines that have come since the last call. Lines in another form are passed over.
  std::vector<story_line_t> take();

  /// Readable when a pipe has new lines.
  int descriptor() const { return file.get(); }

 private:
  descriptor_t file;
  std::string unread;
};

}  // namespace sim
