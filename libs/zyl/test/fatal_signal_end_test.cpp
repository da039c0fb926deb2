#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "test_support/crash_report.h"
#include "zyl/test/fatal_signal_fixture.h"

// How a process ends that has reported a fatal signal.

namespace zyl {
namespace {

using test_support::crash_log;
using test_support::crash_report_reader_t;
using test_support::only_report_in;
using test_support::second_crash_log;
using testing::ElementsAre;

#if defined(__SANITIZE_THREAD__)
constexpr bool thread_sanitizer = true;
#else
constexpr bool thread_sanitizer = false;
#endif
#if defined(__SANITIZE_ADDRESS__)
constexpr bool own_allocator = true;
#else
constexpr bool own_allocator = thread_sanitizer;
#endif

class FatalSignalEnd : public FatalSignal {
 protected:
  /// The report is of what the first line tells, a write that was forbidden.
  void expect_reported_first(const end_t& end) const {
    expect_reported(end, segv, forbidden, end.lines.at(0).substr(0, 18));
  }
};

TEST_F(FatalSignalEnd, TakesTheExitHandlersWithAllSignalsBlockedButTheFatalOnesAndTheAlarm) {
  const end_t end = crash({"forbidden"});
  std::vector<std::string> open;
  for (const int signal : {SIGILL, SIGABRT, SIGBUS, SIGSEGV, SIGALRM}) {
    open.push_back("open " + std::to_string(signal) + "\n");
  }
  EXPECT_EQ(end.status, 1);
  EXPECT_THAT(end.lines, ElementsAre(testing::_, "exiting\n", open[0], open[1], open[2], open[3], open[4], "exited\n",
                                     "destroyed\n"));
}

/// What crashes in an exit handler, after the first crash.
class FatalSignalInExit : public FatalSignalEnd, public testing::WithParamInterface<const char*> {};

TEST_P(FatalSignalInExit, EndsTheProcessWithTheSameStatusAndNoOtherReport) {
  const end_t end = crash({"forbidden", GetParam()});
  expect_reported_first(end);
  EXPECT_THAT(end.lines, testing::Contains("exiting\n"));
  EXPECT_NE(end.lines.back(), "exited\n");
  EXPECT_NE(end.lines.back(), "destroyed\n");
}

INSTANTIATE_TEST_SUITE_P(Crashes, FatalSignalInExit, testing::Values("forbidden", "bus", "illegal", "abort", "raise"));

// The C++ library tells of it on standard error, behind the report.
TEST_F(FatalSignalEnd, ByAnExitHandlersTerminationIsNoOtherReport) {
  const end_t end = crash({"forbidden", "terminate"});
  const std::string text = end.error_text();
  crash_report_reader_t reader(text);
  reader.report();
  reader.literal(test_support::crash_report_trailer);
  EXPECT_EQ(reader.unread(), "terminate called without an active exception\n");
  EXPECT_EQ(end.status, 1);
  EXPECT_EQ(only_report_in(crash_log).address, end.lines.at(0).substr(0, 18));
  EXPECT_EQ(only_report_in(second_crash_log).address, end.lines.at(0).substr(0, 18));
}

TEST_F(FatalSignalEnd, AfterAnAbortIsNotAnotherAborts) {
  const end_t end = crash({"abort", "abort"});
  expect_reported(end, "SIGABRT (abnormal termination)", unknown_code, only_report_in(crash_log).address);
  EXPECT_EQ(std::count(end.lines.begin(), end.lines.end(), "exiting\n"), 1);
}

TEST_F(FatalSignalEnd, WithoutTheHandlerInstalledIsGuardedToo) {
  const end_t end = crash({"report", std::to_string(SIGFPE), std::to_string(FPE_INTDIV), "1234", "forbidden"});
  EXPECT_EQ(end.status, 1);
  EXPECT_EQ(report_on_standard_error(end).address, "0x0000000000001234");
  EXPECT_EQ(only_report_in(crash_log).address, "0x0000000000001234");
}

/// The exit handler hung on the lock that the crash left held; that ended the process, after the report.
void expect_hung(const end_t& end) {
  EXPECT_EQ(end.lines.at(1), "exiting\n");
  EXPECT_NE(end.lines.back(), "exited\n");
  EXPECT_NE(end.lines.back(), "destroyed\n");
}

TEST_F(FatalSignalEnd, UnderTheAllocatorsLockIsReported) {
  if (own_allocator) {
    GTEST_SKIP() << "a sanitizer's allocator cannot be replaced by one that crashes";
  }
  const end_t end = crash({"malloc"});
  expect_hung(end);
  expect_reported_first(end);
}

TEST_F(FatalSignalEnd, UnderALoggersLockIsReported) {
  if (thread_sanitizer) {
    GTEST_SKIP() << "the thread sanitizer delivers no alarm while it waits for a lock";
  }
  const end_t end = crash({"logger"});
  expect_hung(end);
  expect_reported_first(end);
}

TEST_F(FatalSignalEnd, LeavesTheLoggersToThreadsThatGoOn) {
  const end_t end = crash({"late_log"});
  EXPECT_EQ(end.lines.back(), "a line\n");
  expect_reported_first(end);
}

// --- what comes while the report is written ---

/// The report is held up at the first log, so what it says there comes out of a pipe.
class FatalSignalHeld : public FatalSignalEnd {
 protected:
  /// Lets the report go on; the process tells this crash only, and ends by its exit handlers.
  void expect_only(const std::string& address, victim_t& victim) const {
    const std::string text = log.release();
    crash_report_reader_t reader(text);
    expect_report(reader.report(), segv, forbidden, address);
    EXPECT_EQ(reader.unread(), "");
    const end_t end = victim.end();
    EXPECT_EQ(end.status, 1);
    EXPECT_EQ(end.lines.back(), "destroyed\n");
    expect_report(only_report_in(second_crash_log), segv, forbidden, address);
    expect_report(report_on_standard_error(end), segv, forbidden, address);
  }

  holding_log_t log{crash_log};
};

TEST_F(FatalSignalHeld, BlocksAllSignals) {
  victim_t victim({"forbidden"});
  ASSERT_TRUE(log.wait_for_reporter());
  sigset_t all;
  sigfillset(&all);
  for (int signal = 1; signal < NSIG; ++signal) {
    // Nobody can block these two.
    if (sigismember(&all, signal) == 1 && signal != SIGKILL && signal != SIGSTOP) {
      EXPECT_TRUE(blocks(victim.id(), victim.id(), signal)) << signal;
    }
  }
  expect_only(victim.line().substr(0, 18), victim);
}

TEST_F(FatalSignalHeld, ForgetsTheSignalsThatItBlocks) {
  victim_t victim({"forbidden"});
  ASSERT_TRUE(log.wait_for_reporter());
  for (const int signal : {SIGILL, SIGABRT, SIGBUS, SIGSEGV, SIGALRM, SIGTERM}) {
    EXPECT_EQ(kill(victim.id(), signal), 0);
  }
  expect_only(victim.line().substr(0, 18), victim);
}

/// Waits until a thread is in the handler, where alone it blocks the fatal signals.
bool wait_for_crash_of(pid_t thread, const victim_t& victim) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!blocks(victim.id(), thread, SIGSEGV)) {
    if (std::chrono::steady_clock::now() > deadline) {
      return false;
    }
    std::this_thread::yield();
  }
  return true;
}

TEST_F(FatalSignalHeld, KeepsAnotherThreadFromReporting) {
  victim_t victim({"late_thread"});
  const pid_t other = std::stoi(victim.line());
  const std::string address = victim.line().substr(0, 18);
  ASSERT_TRUE(log.wait_for_reporter());
  victim.go_on();
  EXPECT_NE(victim.line().substr(0, 18), address);
  ASSERT_TRUE(wait_for_crash_of(other, victim));
  expect_only(address, victim);
}

TEST_F(FatalSignalEnd, IsNotCutShortByAnotherThreadThatCrashes) {
  victim_t victim({"forbidden", "loose_thread"});
  pid_t other = 0;
  while (other == 0) {
    const std::string line = victim.line();
    ASSERT_NE(line, "");
    other = std::atoi(line.c_str());
  }
  ASSERT_TRUE(wait_for_crash_of(other, victim));
  victim.go_on();
  const end_t end = victim.end();
  expect_reported_first(end);
  EXPECT_EQ(end.lines.back(), "destroyed\n");
}

}  // namespace
}  // namespace zyl
