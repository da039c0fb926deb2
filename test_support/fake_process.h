#pragma once

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <string>

namespace test_support {

/// A child process that does nothing under a name of the test's choice (its `comm`, 15 characters at most). It has the
/// name when the constructor returns and is gone from "/proc" when the destructor does.
class fake_process_t {
 public:
  explicit fake_process_t(const std::string& name) {
    int named[2];
    if (pipe(named) != 0) {
      ADD_FAILURE() << "no pipe";
      return;
    }
    child = fork();
    if (child < 0) {
      ADD_FAILURE() << "no process";
    }
    if (child == 0) {
      run(name, named[1]);
    }
    close(named[1]);
    char byte = 0;
    [[maybe_unused]] const ssize_t got = read(named[0], &byte, 1);
    close(named[0]);
  }
  ~fake_process_t() {
    if (child > 0) {
      kill(child, SIGKILL);
      waitpid(child, nullptr, 0);
    }
  }

  fake_process_t(const fake_process_t&) = delete;
  fake_process_t& operator=(const fake_process_t&) = delete;

  std::string id() const { return std::to_string(child); }

 private:
  [[noreturn]] static void run(const std::string& name, int named) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    prctl(PR_SET_NAME, name.c_str());
    [[maybe_unused]] const ssize_t told = write(named, "1", 1);
    for (;;) {
      pause();
    }
  }

  pid_t child = -1;
};

/// A name of fourteen characters for the processes of this test alone, which is unlike those of tests that run at the
/// same time: there are sandboxes that show all of them.
inline std::string name_for_processes() {
  std::string number = std::to_string(getpid());
  number.insert(0, 7 - std::min<std::size_t>(number.size(), 7), '0');
  return "engine_" + number;
}

}  // namespace test_support
