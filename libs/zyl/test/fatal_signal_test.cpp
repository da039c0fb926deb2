#include "zyl/fatal_signal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/capability.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <iterator>
#include <string>
#include <utility>
#include <vector>

#include "test_support/crash_report.h"

namespace {

using test_support::crash_log;
using test_support::crash_report_reader_t;
using test_support::crash_report_t;
using test_support::file_content;
using test_support::only_report_in;
using test_support::second_crash_log;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;

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

constexpr const char* name = "/opt/a program";

/// How a program ended that was meant to crash, and what it said.
struct end_t {
  int status = -1;                        // as a shell tells it
  std::vector<std::string> error_writes;  // each write to standard error
  std::vector<std::string> lines;         // of standard output

  std::string error_text() const {
    std::string text;
    for (const auto& piece : error_writes) {
      text += piece;
    }
    return text;
  }
};

/// The receiving end of a program's output, one packet a write, and the sending one.
struct channel_t {
  channel_t() {
    std::array<int, 2> ends{-1, -1};
    [[maybe_unused]] const int made = socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data());
    receiver = ends[0];
    sender = ends[1];
  }
  ~channel_t() {
    close(receiver);
    close(sender);
  }

  channel_t(const channel_t&) = delete;
  channel_t& operator=(const channel_t&) = delete;

  /// The packets until there is no sender any more.
  std::vector<std::string> packets() const {
    std::vector<std::string> all;
    std::array<char, 8192> buffer{};
    for (;;) {
      const ssize_t size = recv(receiver, buffer.data(), buffer.size(), 0);
      if (size <= 0) {
        return all;
      }
      all.emplace_back(buffer.data(), static_cast<std::size_t>(size));
    }
  }

  int receiver = -1;
  int sender = -1;
};

std::string victim_path() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path() / "fatal_signal_victim";
}

// Even root, without the right to ignore permissions.
[[noreturn]] void execute(std::vector<std::string> words, int output, int error) {
  dup2(output, STDOUT_FILENO);
  dup2(error, STDERR_FILENO);
  prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE);
  for (const auto& [variable, value] : test_support::with_sanitizers_aside()) {
    setenv(variable.c_str(), value.c_str(), 1);
  }
  std::vector<char*> arguments;
  for (auto& word : words) {
    arguments.push_back(word.data());
  }
  arguments.push_back(nullptr);
  execv(victim_path().c_str(), arguments.data());
  _exit(127);
}

/// Has a program crash as the words say.
end_t crash(std::vector<std::string> words) {
  words.insert(words.begin(), name);
  channel_t output;
  channel_t error;
  const pid_t child = fork();
  if (child == 0) {
    execute(words, output.sender, error.sender);
  }
  close(std::exchange(output.sender, -1));
  close(std::exchange(error.sender, -1));
  end_t end;
  end.error_writes = error.packets();
  end.lines = output.packets();
  int status = 0;
  waitpid(child, &status, 0);
  end.status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  return end;
}

/// What standard error says but for the line behind the report.
crash_report_t report_on_standard_error(const end_t& end) {
  const std::string text = end.error_text();
  crash_report_reader_t reader(text);
  const crash_report_t read = reader.report();
  EXPECT_EQ(reader.unread(), test_support::crash_report_trailer);
  return read;
}

/// The seconds of a report's time.
std::time_t seconds(const std::string& text) {
  std::tm time{};
  const char* end = strptime(text.c_str(), "%c", &time);
  EXPECT_TRUE(end != nullptr && *end == '\0') << text;
  time.tm_isdst = -1;
  return std::mktime(&time);
}

class FatalSignal : public testing::Test {
 protected:
  FatalSignal() {
    unsetenv("TZ");  // as on the appliance; it is then that the C library looks for changes of the zone
    tzset();
    for (const char* folder : {"/media/log", "/var/log"}) {
      std::filesystem::create_directories(folder);
    }
  }

  void expect_report(const crash_report_t& report, const std::string& signal, const std::string& code,
                     const std::string& address) const {
    EXPECT_EQ(report.program, name);
    EXPECT_EQ(report.signal, signal);
    EXPECT_EQ(report.code, code);
    EXPECT_EQ(report.address, address);
    EXPECT_GE(seconds(report.time), begin);
    EXPECT_LE(seconds(report.time), std::time(nullptr));
    EXPECT_THAT(report.stack, Not(IsEmpty()));
    EXPECT_LE(report.stack.size(), 30U);
    EXPECT_THAT(report.stack, Each(MatchesRegex(".+\\[0x[0-9a-f]+\\]")));
  }

  /// The process ended with status 1, and the report is in all three places.
  void expect_reported(const end_t& end, const std::string& signal, const std::string& code,
                       const std::string& address) const {
    EXPECT_EQ(end.status, 1);
    expect_report(report_on_standard_error(end), signal, code, address);
    expect_report(only_report_in(crash_log), signal, code, address);
    expect_report(only_report_in(second_crash_log), signal, code, address);
  }

  std::time_t begin = std::time(nullptr);
};

const std::string segv = "SIGSEGV (segmentation fault)";
const std::string not_mapped = "SEGV_MAPERR (address not mapped to object)";
const std::string forbidden = "SEGV_ACCERR (invalid permissions for mapped object)";
const std::string unknown_code = "(unknown code)";

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

TEST_F(FatalSignal, EndsTheProcessByItsExitHandlersWithAllSignalsButTheAlarmBlocked) {
  const end_t end = crash({"forbidden"});
  EXPECT_EQ(end.status, 1);
  EXPECT_THAT(end.lines, ElementsAre(testing::_, "exiting\n", "blocked\n", "blocked\n", "blocked\n", "blocked\n",
                                     "blocked\n", "blocked\n", "open\n", "exited\n", "destroyed\n"));
}

TEST_F(FatalSignal, DuringTheReportOfAnotherIsHeldBack) {
  const end_t end = crash({"twice"});
  EXPECT_EQ(end.lines.back(), "destroyed\n");
  expect_reported(end, segv, forbidden, end.lines.at(0).substr(0, 18));
}

/// The exit handler hung on the lock that the crash left held; that ended the process, after the report.
void expect_hung(const end_t& end) {
  EXPECT_EQ(end.lines.at(1), "exiting\n");
  EXPECT_NE(end.lines.back(), "exited\n");
  EXPECT_NE(end.lines.back(), "destroyed\n");
}

TEST_F(FatalSignal, UnderTheAllocatorsLockIsReported) {
  if (own_allocator) {
    GTEST_SKIP() << "a sanitizer's allocator cannot be replaced by one that crashes";
  }
  const end_t end = crash({"malloc"});
  expect_hung(end);
  expect_reported(end, segv, forbidden, end.lines.at(0).substr(0, 18));
}

TEST_F(FatalSignal, UnderALoggersLockIsReported) {
  if (thread_sanitizer) {
    GTEST_SKIP() << "the thread sanitizer delivers no alarm while it waits for a lock";
  }
  const end_t end = crash({"logger"});
  expect_hung(end);
  expect_reported(end, segv, forbidden, end.lines.at(0).substr(0, 18));
}

TEST_F(FatalSignal, LeavesTheLoggersToThreadsThatGoOn) {
  const end_t end = crash({"late_log"});
  EXPECT_EQ(end.lines.back(), "a line\n");
  expect_reported(end, segv, forbidden, end.lines.at(0).substr(0, 18));
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
  zyl::install_fatal_signal_handler(name);
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
  zyl::install_fatal_signal_handler(name);
  for (const int signal : others) {
    after.push_back(action_of(signal).sa_handler);
  }
  EXPECT_EQ(after, before);
}

}  // namespace
