#include "sim/remote/child_process.h"

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <system_error>

namespace sim {
namespace {

constexpr std::chrono::milliseconds kill_limit{10'000};

/// What `posix_spawn` does in the child before it runs the program.
class spawn_set_up_t {
 public:
  explicit spawn_set_up_t(const std::string& output_file) {
    posix_spawn_file_actions_init(&actions);
    if (!output_file.empty()) {
      posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output_file.c_str(), O_WRONLY | O_CREAT | O_APPEND,
                                       0644);
      posix_spawn_file_actions_adddup2(&actions, STDOUT_FILENO, STDERR_FILENO);
    }
    posix_spawnattr_init(&attributes);
    sigset_t signals;
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
  }
  ~spawn_set_up_t() {
    posix_spawn_file_actions_destroy(&actions);
    posix_spawnattr_destroy(&attributes);
  }
  spawn_set_up_t(const spawn_set_up_t&) = delete;
  spawn_set_up_t& operator=(const spawn_set_up_t&) = delete;
  spawn_set_up_t(spawn_set_up_t&&) = delete;
  spawn_set_up_t& operator=(spawn_set_up_t&&) = delete;

  posix_spawn_file_actions_t actions;
  posix_spawnattr_t attributes;
};

/// Pointers into `texts`, with the null that ends such a list.
std::vector<char*> pointers_to(std::vector<std::string>& texts) {
  std::vector<char*> pointers;
  for (auto& text : texts) {
    pointers.push_back(text.data());
  }
  pointers.push_back(nullptr);
  return pointers;
}

std::vector<std::string> environment_with(std::map<std::string, std::string> variables) {
  for (char** entry = environ; *entry != nullptr; ++entry) {
    const std::string text(*entry);
    const std::size_t end = text.find('=');
    if (end != std::string::npos) {
      variables.emplace(text.substr(0, end), text.substr(end + 1));
    }
  }
  std::vector<std::string> entries;
  for (const auto& [name, value] : variables) {
    entries.push_back(name + "=" + value);
  }
  return entries;
}

}  // namespace

child_process_t::child_process_t(const std::vector<std::string>& command, const options_t& options) {
  std::vector<std::string> words = command;
  std::vector<std::string> variables = environment_with(options.environment);
  const spawn_set_up_t set_up(options.output_file);
  const int error = posix_spawnp(&process, words.at(0).c_str(), &set_up.actions, &set_up.attributes,
                                 pointers_to(words).data(), pointers_to(variables).data());
  if (error != 0) {
    throw std::system_error(error, std::generic_category(), "cannot start " + words[0]);
  }
  process_descriptor = descriptor_t(static_cast<int>(syscall(SYS_pidfd_open, process, 0)));
  if (!process_descriptor) {
    const int reason = errno;
    kill(process, SIGKILL);
    waitpid(process, nullptr, 0);
    throw std::system_error(reason, std::generic_category(), "cannot watch " + words[0]);
  }
}

child_process_t::~child_process_t() {
  if (!status) {
    stop(SIGKILL, kill_limit);
  }
}

void child_process_t::send_signal(int number) const {
  if (!status) {
    kill(process, number);
  }
}

std::optional<int> child_process_t::wait(std::chrono::milliseconds limit) {
  if (status) {
    return status;
  }
  pollfd ended{process_descriptor.get(), POLLIN, 0};
  int result = 0;
  if (poll(&ended, 1, static_cast<int>(limit.count())) == 1 && waitpid(process, &result, 0) == process) {
    status = WIFSIGNALED(result) ? 128 + WTERMSIG(result) : WEXITSTATUS(result);
  }
  return status;
}

int child_process_t::stop(int signal_number, std::chrono::milliseconds limit) {
  send_signal(signal_number);
  if (!wait(limit)) {
    send_signal(SIGKILL);
    wait(kill_limit);
  }
  return status.value_or(128 + SIGKILL);
}

std::string program_folder() { return std::filesystem::read_symlink("/proc/self/exe").parent_path(); }

}  // namespace sim
