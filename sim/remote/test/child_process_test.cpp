#include "sim/remote/child_process.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/wait.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>
#include <string>
#include <system_error>

using std::chrono::milliseconds;
using std::chrono::seconds;

namespace {

constexpr seconds limit{30};

std::string text_of(const std::string& path) {
  std::ifstream file(path);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

}  // namespace

TEST(ChildProcess, EndsWithTheStatusOfItsProgram) {
  sim::child_process_t child({"sh", "-c", "exit 7"});
  EXPECT_EQ(child.wait(limit), std::optional(7));
  EXPECT_FALSE(child.running());
  EXPECT_EQ(child.wait(limit), std::optional(7));
}

TEST(ChildProcess, OneThatASignalEndsHasAShellsStatus) {
  sim::child_process_t child({"sleep", "1000"});
  EXPECT_TRUE(child.running());
  EXPECT_EQ(child.stop(SIGTERM, limit), 128 + SIGTERM);
}

TEST(ChildProcess, OneThatIgnoresTheSignalIsKilled) {
  sim::child_process_t child({"sh", "-c", "trap '' TERM; echo ready; while :; do sleep 1; done"}, {{}, "/tmp/output"});
  while (text_of("/tmp/output").empty()) {
    ASSERT_EQ(child.wait(milliseconds(1)), std::nullopt);
  }
  EXPECT_EQ(child.stop(SIGTERM, milliseconds(10)), 128 + SIGKILL);
}

TEST(ChildProcess, HasTheGivenVariablesBesideAndInPlaceOfOurs) {
  setenv("OURS", "ours", 1);
  setenv("REPLACED", "ours", 1);
  sim::child_process_t child({"sh", "-c", "echo $OURS $REPLACED $GIVEN >&2"},
                             {{{"REPLACED", "given"}, {"GIVEN", "too"}}, "/tmp/output"});
  EXPECT_EQ(child.wait(limit), std::optional(0));
  EXPECT_EQ(text_of("/tmp/output"), "ours given too\n");
}

TEST(ChildProcess, SignalsThatWeIgnoreAreNotIgnoredByIt) {
  std::signal(SIGUSR1, SIG_IGN);
  sim::child_process_t child({"sh", "-c", "kill -USR1 $$"});
  EXPECT_EQ(child.wait(limit), std::optional(128 + SIGUSR1));
}

TEST(ChildProcess, DiesWithItsObject) {
  pid_t pid = 0;
  {
    const sim::child_process_t child({"sleep", "1000"});
    pid = child.pid();
    EXPECT_EQ(kill(pid, 0), 0);
  }
  EXPECT_EQ(kill(pid, 0), -1);
}

TEST(ChildProcess, AProgramThatDoesNotExistIsAnError) {
  EXPECT_THROW(sim::child_process_t({"no-such-program"}), std::system_error);
}

TEST(ChildProcess, OneThatCannotBeWatchedDoesNotRunOn) {
  rlimit usual{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &usual), 0);
  const rlimit none_more{3, usual.rlim_max};
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &none_more), 0);
  EXPECT_THROW(sim::child_process_t({"sleep", "1000"}), std::system_error);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &usual), 0);
  EXPECT_EQ(waitpid(-1, nullptr, 0), -1);
  EXPECT_EQ(errno, ECHILD);
}
