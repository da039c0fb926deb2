#pragma once

#include <gtest/gtest.h>
#include <sys/types.h>

#include <ctime>
#include <string>
#include <vector>

#include "test_support/crash_report.h"

namespace zyl {

/// How a program ended that was meant to crash, and what it said.
struct end_t {
  int status = -1;                        // as a shell tells it
  std::vector<std::string> error_writes;  // each write to standard error
  std::vector<std::string> lines;         // of standard output

  std::string error_text() const;
};

/// The two ends of a way for packets, one a write.
class channel_t {
 public:
  channel_t();
  ~channel_t();

  channel_t(const channel_t&) = delete;
  channel_t& operator=(const channel_t&) = delete;

  /// The next packet; empty if there is no sender any more.
  std::string packet() const;

  /// The packets until there is no sender any more.
  std::vector<std::string> packets() const;

  void close_sender();

  int receiver = -1;
  int sender = -1;
};

/// The program `fatal_signal_victim`, which crashes as the words say.
class victim_t {
 public:
  static constexpr const char* name = "/opt/a program";

  explicit victim_t(std::vector<std::string> words);
  ~victim_t();

  victim_t(const victim_t&) = delete;
  victim_t& operator=(const victim_t&) = delete;

  pid_t id() const { return child; }

  /// Waits for the next line that it tells.
  std::string line();

  /// Lets it go on where it waits to be told.
  void go_on() const;

  /// Waits for its end.
  end_t end();

 private:
  channel_t input;
  channel_t output;
  channel_t error;
  std::vector<std::string> lines;
  pid_t child;
};

/// Has a program crash as the words say.
end_t crash(std::vector<std::string> words);

/// A crash log that is a full pipe, so that it holds who reports there until it is released.
class holding_log_t {
 public:
  explicit holding_log_t(const char* path);
  ~holding_log_t();

  holding_log_t(const holding_log_t&) = delete;
  holding_log_t& operator=(const holding_log_t&) = delete;

  /// Waits until somebody has opened it.
  bool wait_for_reporter() const;

  /// What was reported there in all, when nobody has it open any more.
  std::string release() const;

 private:
  int reader = -1;
  int watch = -1;
  std::size_t filling = 0;
};

/// Whether a thread of a process blocks a signal.
bool blocks(pid_t process, pid_t thread, int signal);

/// What standard error says but for the line behind the report.
test_support::crash_report_t report_on_standard_error(const end_t& end);

class FatalSignal : public testing::Test {
 protected:
  FatalSignal();

  void expect_report(const test_support::crash_report_t& report, const std::string& signal, const std::string& code,
                     const std::string& address) const;

  /// The process ended with status 1, and one report is in all three places.
  void expect_reported(const end_t& end, const std::string& signal, const std::string& code,
                       const std::string& address) const;

  std::time_t begin = std::time(nullptr);
};

inline const std::string segv = "SIGSEGV (segmentation fault)";
inline const std::string forbidden = "SEGV_ACCERR (invalid permissions for mapped object)";
inline const std::string unknown_code = "(unknown code)";

}  // namespace zyl
