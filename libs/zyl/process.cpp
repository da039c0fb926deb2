#include "zyl/process.h"

#include <sys/wait.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <string>
#include <thread>

#include "zyl/exceptions.h"

namespace zyl {
namespace {

constexpr int32_t pause_ms = 100;

void signal_to_stop(pid_t process) {
  const bool too_many = process == 0 || process == -1;
  if (too_many || kill(process, SIGHUP) != 0) {
    const int error = too_many ? EINVAL : errno;
    throw last_process_exception_t("error signaling process " + std::to_string(process) + " to stop", error);
  }
}

bool has_ended(pid_t process) {
  const pid_t got = waitpid(process, nullptr, WNOHANG);
  if (got == process) {
    return true;
  }
  if (got > 0) {
    throw process_exception_t("waitpid returned wrong pid (got " + std::to_string(got) + ", expected " +
                              std::to_string(process) + ")");
  }
  if (got == 0) {
    return false;
  }
  if (const int error = errno; error != ECHILD) {
    throw last_process_exception_t("error waiting on process " + std::to_string(process) + " to stop", error);
  }
  return true;
}

}  // namespace

bool stop_process(pid_t process, int32_t limit_ms) {
  signal_to_stop(process);
  for (int32_t waited_ms = 0; !has_ended(process); waited_ms += pause_ms) {
    if (waited_ms >= limit_ms) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(pause_ms));
  }
  return true;
}

}  // namespace zyl
