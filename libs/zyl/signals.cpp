#include "zyl/signals.h"

#include <pthread.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>

#include "zyl/exceptions.h"

namespace zyl {
namespace {

using milliseconds_t = std::chrono::milliseconds;
using std::chrono::steady_clock;

sigset_t service_signals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int number : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGWINCH}) {
    sigaddset(&signals, number);
  }
  return signals;
}

sigset_t awaited_signals() {
  sigset_t signals = service_signals();
  sigdelset(&signals, SIGPIPE);
  return signals;
}

timespec time_until(steady_clock::time_point deadline) {
  const auto left = std::max(deadline - steady_clock::now(), steady_clock::duration::zero());
  const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(left);
  return {seconds.count(), std::chrono::nanoseconds(left - seconds).count()};
}

}  // namespace

void block_signals() {
  const sigset_t signals = service_signals();
  if (const int error = pthread_sigmask(SIG_BLOCK, &signals, nullptr); error != 0) {
    throw last_process_exception_t("pthread_sigmask failed", error);
  }
}

int wait_for_signal() {
  const sigset_t signals = awaited_signals();
  int number = 0;
  if (const int error = sigwait(&signals, &number); error != 0) {
    throw last_process_exception_t("sigwait failed", error);
  }
  return number;
}

std::optional<int> wait_for_signal_timeout(int32_t timeout_ms) {
  const sigset_t signals = awaited_signals();
  const auto deadline = steady_clock::now() + milliseconds_t(timeout_ms);
  for (;;) {
    const timespec left = time_until(deadline);
    if (const int number = sigtimedwait(&signals, nullptr, &left); number > 0) {
      return number;
    }
    if (errno == EAGAIN) {
      return std::nullopt;
    }
    if (errno != EINTR) {
      throw last_process_exception_t("sigwait failed");
    }
  }
}

void daemon_session() {
  if (setsid() < 0) {
    throw last_process_exception_t("setsid failed");
  }
  block_signals();
}

}  // namespace zyl
