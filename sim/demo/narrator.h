#pragma once

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

#include "sim/demo/teller.h"
#include "sim/descriptor.h"
#include "sim/remote/remote_control.h"
#include "sim/remote/story_reader.h"

namespace sim {

/// Reads the story of a run as it happens, keeps it, and prints what is worth telling, on a thread of its own.
///
/// Lines are held back until `start_clock` says what their times are relative to.
class narrator_t {
 public:
  using predicate_t = std::function<bool(const story_line_t& line)>;

  /// Reads the named pipe `pipe`, which must exist. Prints to `out`, which nobody else may use while lines come.
  narrator_t(const std::string& pipe, std::ostream& out, bool everything, bool coloured);
  ~narrator_t();

  narrator_t(const narrator_t&) = delete;
  narrator_t& operator=(const narrator_t&) = delete;
  narrator_t(narrator_t&&) = delete;
  narrator_t& operator=(narrator_t&&) = delete;

  /// Prints what was held back, and from now on every line as it comes, with times relative to `zero_us`.
  void start_clock(int64_t zero_us);

  /// The same, unless the clock runs already.
  void start_clock_if_held(int64_t zero_us);

  /// Prints no further line.
  void fall_silent();

  /// Waits until `count` lines since the time `since_us` satisfy `wanted`; `what` says it in words.
  outcome_t expect_told(const std::string& what, const predicate_t& wanted, int64_t since_us = 0, std::size_t count = 1,
                        std::chrono::milliseconds limit = generous_limit);

  /// Waits until no line has come for a while, so that what follows on the terminal comes after the story.
  void wait_for_silence();

 private:
  void listen();
  void hear(const story_line_t& line);
  void print_held(int64_t zero);
  void print(const story_line_t& line);

  story_reader_t reader;
  // A pipe without a writer is hung up, and poll would return at once for ever.
  descriptor_t kept_open;
  descriptor_t ending;
  std::ostream& out;
  teller_t teller;
  bool coloured;
  std::mutex mutex;
  std::condition_variable heard_more;
  std::vector<story_line_t> heard;
  std::optional<int64_t> zero_us;
  bool silent = false;
  std::thread thread;
};

/// CLOCK_MONOTONIC, as in stories.
int64_t story_time_us();

}  // namespace sim
