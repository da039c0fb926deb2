#pragma once

#include <fcntl.h>
#include <signal.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "app/vgn_control_main.h"

/// The program, started in a child process; its standard output and standard error go to one file.
class program_t {
 public:
  /// `before` runs in the child ahead of the program.
  explicit program_t(std::vector<std::string> arguments, const std::function<void()>& before = nothing)
      : child(fork()) {
    if (child == 0) {
      run(std::move(arguments), before);
    }
  }
  ~program_t() {
    if (child > 0) {
      kill(child, SIGKILL);
      waitpid(child, nullptr, 0);
    }
  }

  static void nothing() {}

  program_t(const program_t&) = delete;
  program_t& operator=(const program_t&) = delete;

  // Waits for its end; the exit code, or -1 if a signal ended it.
  int exit_code() {
    int status = 0;
    waitpid(child, &status, 0);
    child = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  // The signal that ended it after it was sent `signal`, 0 if none did.
  int end_by(int signal) {
    kill(child, signal);
    int status = 0;
    waitpid(child, &status, 0);
    child = -1;
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
  }

  static std::string output() {
    std::ostringstream text;
    text << std::ifstream(output_file).rdbuf();
    return text.str();
  }

 private:
  static constexpr const char* output_file = "/tmp/output";

  [[noreturn]] static void run(std::vector<std::string> arguments, const std::function<void()>& before) {
    const int file = open(output_file, O_CREAT | O_TRUNC | O_WRONLY, 0600);
    dup2(file, STDOUT_FILENO);
    dup2(file, STDERR_FILENO);
    arguments.insert(arguments.begin(), "vgn_control");
    std::vector<char*> argv;
    for (auto& argument : arguments) {
      argv.push_back(argument.data());
    }
    argv.push_back(nullptr);
    before();
    std::exit(vgn_control::vgn_control_main(static_cast<int>(arguments.size()), argv.data()));
  }

  pid_t child;
};
