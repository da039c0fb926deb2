#pragma once

#include <sys/types.h>

#include <cstdio>
#include <string>
#include <vector>

namespace vgnctl {

struct outcome_t {
  int status;
  std::string out;
  std::string error;
};

/// Runs a bash command line to its end; its status as a shell tells it.
outcome_t shell(const std::string& command);

/// Runs vgnctl to its end; `arguments` as a shell takes them.
outcome_t run(const std::string& arguments);

/// vgnctl running beside the test, its output readable line by line. Interrupted when this object dies.
class running_tool_t {
 public:
  /// `output` is where its standard output goes instead, if it is not empty.
  explicit running_tool_t(const std::vector<std::string>& arguments, const std::string& output = "");
  ~running_tool_t();

  running_tool_t(const running_tool_t&) = delete;
  running_tool_t& operator=(const running_tool_t&) = delete;
  running_tool_t(running_tool_t&&) = delete;
  running_tool_t& operator=(running_tool_t&&) = delete;

  /// Waits until there is standard output to read. False if it ends before.
  bool speaks();

  /// The next line of standard output, or what is left of it; empty at its end.
  std::string line();

  void send_signal(int number) const;

  /// Waits for its end and gives what `waitpid` tells.
  int wait();

  /// What it wrote to standard error. Complete once it has ended.
  static std::string error();

 private:
  pid_t process = -1;
  FILE* out = nullptr;
};

}  // namespace vgnctl
