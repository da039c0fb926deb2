#include "zyl/fatal_signal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "test_support/crash_report.h"
#include "zyl/test/fatal_signal_fixture.h"

namespace zyl {
namespace {

using test_support::crash_log;
using test_support::crash_report_reader_t;
using test_support::crash_report_t;
using test_support::file_content;
using test_support::only_report_in;
using test_support::second_crash_log;
using testing::IsEmpty;
using testing::MatchesRegex;

const std::string not_mapped = "SEGV_MAPERR (address not mapped to object)";

TEST_F(FatalSignal, OfAnAddressThatIsNotMapped) {
  const end_t end = crash({"unmapped"});
  expect_reported(end, segv, not_mapped, end.lines.at(0).substr(0, 18));
}

TEST_F(FatalSignal, OfAnAddressThatMayNotBeWritten) {
  const end_t end = crash({"forbidden"});
  expect_reported(end, segv, forbidden, end.lines.at(0).substr(0, 18));
}

TEST_F(FatalSignal, OfAnAddressBehindTheEndOfItsFile) {
  const end_t end = crash({"bus"});
  expect_reported(end, "SIGBUS (bus error)", "BUS_ADRERR (nonexistent physical address)",
                  end.lines.at(0).substr(0, 18));
}

TEST_F(FatalSignal, OfAnIllegalInstruction) {
#if defined(__x86_64__)
  const std::string code = "ILL_ILLOPN (illegal operand)";
#else
  const std::string code = "ILL_ILLOPC (illegal opcode)";
#endif
  const end_t end = crash({"illegal"});
  expect_reported(end, "SIGILL (illegal)", code, end.lines.at(0).substr(0, 18));
}

TEST_F(FatalSignal, OfAnAbort) {
  const end_t end = crash({"abort"});
  expect_reported(end, "SIGABRT (abnormal termination)", unknown_code, only_report_in(crash_log).address);
  EXPECT_THAT(only_report_in(crash_log).address, MatchesRegex("0x[0-9a-f]{16}"));
}

TEST_F(FatalSignal, OnAnotherThread) {
  const end_t end = crash({"thread"});
  expect_reported(end, segv, forbidden, end.lines.at(0).substr(0, 18));
}

TEST_F(FatalSignal, GivesTheSignalsOwnCodeAndAddress) {
  const end_t end = crash({"queue", std::to_string(SIGBUS), std::to_string(BUS_ADRALN), "fedcba9876543210"});
  expect_reported(end, "SIGBUS (bus error)", "BUS_ADRALN (invalid address alignment)", "0xfedcba9876543210");
}

TEST_F(FatalSignal, OfAnAbortHasNoCodeWhateverTheSignalSays) {
  const end_t end = crash({"queue", std::to_string(SIGABRT), "1", "a"});
  expect_reported(end, "SIGABRT (abnormal termination)", unknown_code, "0x000000000000000a");
}

TEST_F(FatalSignal, WritesEachPieceOfItsReportAtOnce) {
  const end_t end = crash({"forbidden"});
  const crash_report_t report = report_on_standard_error(end);
  std::vector<std::string> head{"==== begin fatal error " + std::string(57, '=') + "\n"};
  const std::pair<std::string, std::string> lines[] = {{"program: ", report.program},
                                                       {"time: ", report.time},
                                                       {"signal: ", report.signal},
                                                       {"code: ", report.code},
                                                       {"address: ", report.address}};
  for (const auto& [label, text] : lines) {
    head.insert(head.end(), {label, text, "\n"});
  }
  head.emplace_back("stack backtrace:\n");
  const std::vector<std::string> tail{"dev hint: nm -C -n [program] | grep 0000[address]\n",
                                      "==== end fatal error " + std::string(59, '=') + "\n",
                                      "(this data was appended to ",
                                      crash_log,
                                      " or ",
                                      second_crash_log,
                                      ")",
                                      "\n"};
  const auto& writes = end.error_writes;
  ASSERT_GT(writes.size(), head.size() + tail.size());
  EXPECT_EQ(std::vector(writes.begin(), writes.begin() + std::ssize(head)), head);
  EXPECT_EQ(std::vector(writes.end() - std::ssize(tail), writes.end()), tail);
}

TEST_F(FatalSignal, IsAddedToTheReportsBefore) {
  const end_t first = crash({"forbidden"});
  const end_t second = crash({"abort"});
  for (const char* path : {crash_log, second_crash_log}) {
    const std::string content = file_content(path);
    crash_report_reader_t reader(content);
    expect_report(reader.report(), segv, forbidden, first.lines.at(0).substr(0, 18));
    EXPECT_EQ(reader.report().signal, "SIGABRT (abnormal termination)");
    EXPECT_EQ(reader.unread(), "");
  }
  EXPECT_EQ(report_on_standard_error(second).signal, "SIGABRT (abnormal termination)");
}

TEST_F(FatalSignal, TellsThirtyCallsOfADeepStack) {
  const end_t end = crash({"deep"});
  expect_reported(end, segv, forbidden, end.lines.at(0).substr(0, 18));
  EXPECT_EQ(report_on_standard_error(end).stack.size(), 30U);
  EXPECT_EQ(only_report_in(crash_log).stack.size(), 30U);
  EXPECT_EQ(only_report_in(second_crash_log).stack.size(), 30U);
}

TEST_F(FatalSignal, LeavesFilesThatEverybodyMayUseAsFarAsTheUmaskLetsIt) {
  crash({"unmasked"});
  for (const char* path : {crash_log, second_crash_log}) {
    EXPECT_EQ(std::filesystem::status(path).permissions(), std::filesystem::perms::all) << path;
  }
}

void make_read_only(const char* folder) {
  std::filesystem::permissions(folder, std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec);
}

TEST_F(FatalSignal, InAReadOnlyLogFolderLeavesTheOtherPlaces) {
  make_read_only("/media/log");
  const end_t end = crash({"forbidden"});
  const std::string address = end.lines.at(0).substr(0, 18);
  EXPECT_EQ(end.status, 1);
  EXPECT_FALSE(std::filesystem::exists(crash_log));
  expect_report(only_report_in(second_crash_log), segv, forbidden, address);
  expect_report(report_on_standard_error(end), segv, forbidden, address);
}

TEST_F(FatalSignal, InAReadOnlySecondFolderLeavesTheOtherPlaces) {
  make_read_only("/var/log");
  const end_t end = crash({"forbidden"});
  const std::string address = end.lines.at(0).substr(0, 18);
  EXPECT_EQ(end.status, 1);
  EXPECT_FALSE(std::filesystem::exists(second_crash_log));
  expect_report(only_report_in(crash_log), segv, forbidden, address);
  expect_report(report_on_standard_error(end), segv, forbidden, address);
}

TEST_F(FatalSignal, WithoutLogFoldersIsTold) {
  std::filesystem::remove_all("/media/log");
  std::filesystem::remove_all("/var/log");
  const end_t end = crash({"forbidden"});
  EXPECT_EQ(end.status, 1);
  expect_report(report_on_standard_error(end), segv, forbidden, end.lines.at(0).substr(0, 18));
  EXPECT_FALSE(std::filesystem::exists("/media/log"));
  EXPECT_FALSE(std::filesystem::exists("/var/log"));
}

TEST_F(FatalSignal, OfAFloatingPointExceptionIsLeftToTheSystem) {
  const end_t end = crash({"float"});
  EXPECT_EQ(end.status, 128 + SIGFPE);
  EXPECT_THAT(end.error_writes, IsEmpty());
  EXPECT_FALSE(std::filesystem::exists(crash_log));
  EXPECT_FALSE(std::filesystem::exists(second_crash_log));
}

TEST_F(FatalSignal, OfAFloatingPointExceptionIsReportedIfItComesThatFar) {
  const end_t end = crash({"report", std::to_string(SIGFPE), std::to_string(FPE_INTDIV), "1234"});
  const crash_report_t report = report_on_standard_error(end);
  EXPECT_EQ(end.status, 1);
  EXPECT_EQ(report.signal, "SIGFPE (floating point exception)");
  EXPECT_EQ(report.code, "FPE_INTDIV (integer divide by zero)");
  EXPECT_EQ(report.address, "0x0000000000001234");
}

TEST_F(FatalSignal, BeforeTheHandlerIsInstalledHasNoName) {
  crash({"report", std::to_string(SIGSEGV), std::to_string(SEGV_MAPERR), "0"});
  EXPECT_EQ(only_report_in(crash_log).program, "(unknown application)");
}

TEST_F(FatalSignal, OfAProgramWithANullNameHasAnEmptyOne) {
  crash({"no_name"});
  EXPECT_EQ(only_report_in(crash_log).program, "");
  EXPECT_EQ(only_report_in(second_crash_log).program, "");
}

struct sigaction action_of(int signal) {
  struct sigaction action {};
  sigaction(signal, nullptr, &action);
  return action;
}

TEST_F(FatalSignal, HandlerTakesFourSignalsAndBlocksAll) {
  sigset_t all;
  sigfillset(&all);
  install_fatal_signal_handler(victim_t::name);
  for (const int signal : {SIGILL, SIGSEGV, SIGBUS, SIGABRT}) {
    const auto action = action_of(signal);
    EXPECT_NE(action.sa_flags & SA_SIGINFO, 0);
    EXPECT_EQ(static_cast<unsigned>(action.sa_flags) & (SA_RESETHAND | SA_NODEFER), 0U);
    for (int blocked = 1; blocked < NSIG; ++blocked) {
      // Nobody can block these two.
      if (blocked != SIGKILL && blocked != SIGSTOP) {
        EXPECT_EQ(sigismember(&action.sa_mask, blocked), sigismember(&all, blocked)) << blocked;
      }
    }
  }
}

TEST_F(FatalSignal, HandlerLeavesOtherSignalsAlone) {
  const std::vector<int> others{SIGFPE, SIGTERM, SIGINT, SIGTRAP, SIGALRM};
  std::vector<void (*)(int)> before;
  std::vector<void (*)(int)> after;
  for (const int signal : others) {
    before.push_back(action_of(signal).sa_handler);
  }
  install_fatal_signal_handler(victim_t::name);
  for (const int signal : others) {
    after.push_back(action_of(signal).sa_handler);
  }
  EXPECT_EQ(after, before);
}

}  // namespace
}  // namespace zyl
