#include "zyl/signals.h"

#include <gtest/gtest.h>
#include <pthread.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include "zyl/exceptions.h"

namespace {

const std::vector<int> service_signals{SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGWINCH};

bool is_blocked(int number) {
  sigset_t mask;
  pthread_sigmask(SIG_BLOCK, nullptr, &mask);
  return sigismember(&mask, number) == 1;
}

bool all_blocked() {
  for (const int number : service_signals) {
    if (!is_blocked(number)) {
      return false;
    }
  }
  return true;
}

// In a child, as its mask, its pending signals and its session are to be nobody else's.
void expect_in_child(const std::function<bool()>& condition) {
  EXPECT_EXIT(
      {
        alarm(20);
        std::_Exit(condition() ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace

TEST(SignalsDeathTest, BlocksTheSignalsOfAServiceAndNoOther) {
  expect_in_child([] {
    zyl::block_signals();
    return all_blocked() && !is_blocked(SIGUSR1) && !is_blocked(SIGCHLD) && !is_blocked(SIGALRM);
  });
}

TEST(SignalsDeathTest, WaitTakesEachPendingSignalButPipe) {
  expect_in_child([] {
    zyl::block_signals();
    for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGWINCH}) {
      raise(SIGPIPE);
      raise(number);
      if (zyl::wait_for_signal() != number) {
        return false;
      }
    }
    return true;
  });
}

TEST(SignalsDeathTest, WaitWithATimeoutTakesEachPendingSignalButPipe) {
  expect_in_child([] {
    zyl::block_signals();
    for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGWINCH}) {
      raise(SIGPIPE);
      raise(number);
      if (zyl::wait_for_signal_timeout(20'000) != number) {
        return false;
      }
    }
    return true;
  });
}

TEST(SignalsDeathTest, WaitWithATimeoutEndsWithoutASignal) {
  expect_in_child([] {
    zyl::block_signals();
    return !zyl::wait_for_signal_timeout(0) && !zyl::wait_for_signal_timeout(-5) && !zyl::wait_for_signal_timeout(1);
  });
}

TEST(SignalsDeathTest, AHandledSignalDoesNotEndTheWait) {
  expect_in_child([] {
    zyl::block_signals();
    // The wait is interrupted by the first, which has a handler, and ends by the second, which that handler raises.
    signal(SIGALRM, [](int) { kill(getpid(), SIGTERM); });
    ualarm(1000, 0);
    return zyl::wait_for_signal_timeout(20'000) == SIGTERM;
  });
}

TEST(SignalsDeathTest, ADaemonLeadsItsOwnSessionWithTheSignalsBlocked) {
  expect_in_child([] {
    zyl::daemon_session();
    return getsid(0) == getpid() && all_blocked();
  });
}

TEST(SignalsDeathTest, ALeaderCannotBecomeOneAgain) {
  expect_in_child([] {
    setpgid(0, 0);
    try {
      zyl::daemon_session();
    } catch (const zyl::last_process_exception_t& error) {
      return std::string(error.what()) == "setsid failed : Operation not permitted" && !is_blocked(SIGTERM);
    }
    return false;
  });
}
