#include "tools/vgnctl/test/tool.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace vgnctl {
namespace {

constexpr const char* error_file = "/tmp/vgnctl_error";

std::string text_of(const std::string& path) {
  std::ostringstream text;
  text << std::ifstream(path).rdbuf();
  return text.str();
}

}  // namespace

outcome_t shell(const std::string& command) {
  std::ofstream("/tmp/command") << command;
  const int status = std::system("bash /tmp/command >/tmp/out 2>/tmp/error");
  return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, text_of("/tmp/out"), text_of("/tmp/error")};
}

outcome_t run(const std::string& arguments) { return shell(VGNCTL_PROGRAM " " + arguments); }

running_tool_t::running_tool_t(const std::vector<std::string>& arguments, const std::string& output) {
  std::vector<char*> words{const_cast<char*>(VGNCTL_PROGRAM)};
  for (const std::string& argument : arguments) {
    words.push_back(const_cast<char*>(argument.c_str()));
  }
  words.push_back(nullptr);
  std::array<int, 2> ends{};
  EXPECT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
  process = ::fork();
  if (process == 0) {
    ::dup2(output.empty() ? ends[1] : ::open(output.c_str(), O_WRONLY), STDOUT_FILENO);
    ::dup2(::open(error_file, O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
    ::execv(words[0], words.data());
    ::_exit(127);
  }
  ::close(ends[1]);
  out = ::fdopen(ends[0], "r");
}

running_tool_t::~running_tool_t() {
  if (process > 0) {
    send_signal(SIGINT);
    wait();
  }
  std::fclose(out);
}

bool running_tool_t::speaks() {
  const int first = std::fgetc(out);
  return first != EOF && std::ungetc(first, out) == first;
}

std::string running_tool_t::line() {
  std::string text;
  for (int c = std::fgetc(out); c != EOF && c != '\n'; c = std::fgetc(out)) {
    text.push_back(static_cast<char>(c));
  }
  return text;
}

void running_tool_t::send_signal(int number) const { ::kill(process, number); }

int running_tool_t::wait() {
  int status = 0;
  ::waitpid(process, &status, 0);
  process = -1;
  return status;
}

std::string running_tool_t::error() { return text_of(error_file); }

}  // namespace vgnctl
