#include "zyl/process.h"

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <ctime>
#include <string>
#include <vector>

#include "zyl/exceptions.h"

namespace {

// The pauses of this process, in milliseconds.
std::vector<int64_t> pauses_ms;

}  // namespace

/// Stands in front of the C library's, and tells what it was asked for.
extern "C" int nanosleep(const timespec* wanted, timespec* left) {
  pauses_ms.push_back(int64_t{wanted->tv_sec} * 1000 + wanted->tv_nsec / 1'000'000);
  const int error = clock_nanosleep(CLOCK_REALTIME, 0, wanted, left);
  if (error == 0) {
    return 0;
  }
  errno = error;
  return -1;
}

namespace {

constexpr int32_t generous_ms = 20'000;

/// A child that does nothing; it inherits how this process takes SIGHUP.
class child_t {
 public:
  child_t() : id(fork()) {
    if (id == 0) {
      prctl(PR_SET_PDEATHSIG, SIGKILL);
      for (;;) {
        pause();
      }
    }
  }
  ~child_t() {
    kill(id, SIGKILL);
    waitpid(id, nullptr, 0);
  }

  child_t(const child_t&) = delete;
  child_t& operator=(const child_t&) = delete;

  bool is_gone() const { return kill(id, 0) != 0; }

  const pid_t id;
};

/// Sets how this process takes a signal, for as long as it lives.
class disposition_t {
 public:
  disposition_t(int signal_number, sighandler_t handler) : number(signal_number), before(signal(number, handler)) {}
  ~disposition_t() { signal(number, before); }

  disposition_t(const disposition_t&) = delete;
  disposition_t& operator=(const disposition_t&) = delete;

 private:
  int number;
  sighandler_t before;
};

template <typename Exception>
std::string failure_of(pid_t process) {
  try {
    zyl::stop_process(process, generous_ms);
    return "";
  } catch (const Exception& error) {
    return error.what();
  }
}

}  // namespace

TEST(StopProcess, AChildEndsByHangUpAndIsReaped) {
  const child_t child;
  EXPECT_TRUE(zyl::stop_process(child.id, generous_ms));
  EXPECT_TRUE(child.is_gone());
}

TEST(StopProcess, AChildThatDoesNotEndIsGivenUpAfterTheLimit) {
  const disposition_t ignored(SIGHUP, SIG_IGN);
  const child_t child;
  EXPECT_FALSE(zyl::stop_process(child.id, 0));
  EXPECT_FALSE(zyl::stop_process(child.id, 150));
  EXPECT_FALSE(child.is_gone());
}

TEST(StopProcess, LooksAtOnceAndThenEveryTenthOfASecond) {
  const disposition_t ignored(SIGHUP, SIG_IGN);
  const child_t child;
  pauses_ms.clear();
  EXPECT_FALSE(zyl::stop_process(child.id, 0));
  EXPECT_EQ(pauses_ms, std::vector<int64_t>{});
  EXPECT_FALSE(zyl::stop_process(child.id, 250));
  EXPECT_EQ(pauses_ms, (std::vector<int64_t>{100, 100, 100}));
}

TEST(StopProcess, AProcessThatNobodyCanWaitForCountsAsStopped) {
  const disposition_t never_waited_for(SIGCHLD, SIG_IGN);
  const child_t child;
  EXPECT_TRUE(zyl::stop_process(child.id, generous_ms));
  EXPECT_TRUE(child.is_gone());
}

TEST(StopProcess, WithoutSuchAProcessSaysSo) {
  pid_t id = 0;
  {
    const child_t child;
    id = child.id;
  }
  EXPECT_EQ(failure_of<zyl::last_process_exception_t>(id),
            "error signaling process " + std::to_string(id) + " to stop : No such process");
}

TEST(StopProcess, TheIdsThatMeanManyAreRefused) {
  EXPECT_EQ(failure_of<zyl::last_process_exception_t>(0), "error signaling process 0 to stop : Invalid argument");
  EXPECT_EQ(failure_of<zyl::last_process_exception_t>(-1), "error signaling process -1 to stop : Invalid argument");
}

TEST(StopProcess, AChildOfAGroupIsTheWrongOne) {
  const child_t child;
  ASSERT_EQ(setpgid(child.id, child.id), 0);
  EXPECT_EQ(
      failure_of<zyl::process_exception_t>(-child.id),
      "waitpid returned wrong pid (got " + std::to_string(child.id) + ", expected " + std::to_string(-child.id) + ")");
}
