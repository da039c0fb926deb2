#include "zyl/test/fatal_signal_fixture.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <linux/capability.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <utility>

using test_support::crash_log;
using test_support::crash_report_reader_t;
using test_support::crash_report_t;
using test_support::only_report_in;
using test_support::second_crash_log;
using testing::Each;
using testing::IsEmpty;
using testing::MatchesRegex;
using testing::Not;

namespace zyl {
namespace {

constexpr int patience_ms = 20'000;

std::string victim_path() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path() / "fatal_signal_victim";
}

// Even root, without the right to ignore permissions.
[[noreturn]] void execute(std::vector<std::string> words, int input, int output, int error) {
  dup2(input, STDIN_FILENO);
  dup2(output, STDOUT_FILENO);
  dup2(error, STDERR_FILENO);
  prctl(PR_CAPBSET_DROP, CAP_DAC_OVERRIDE);
  for (const auto& [variable, value] : test_support::with_sanitizers_aside()) {
    setenv(variable.c_str(), value.c_str(), 1);
  }
  std::vector<char*> arguments;
  for (auto& word : words) {
    arguments.push_back(word.data());
  }
  arguments.push_back(nullptr);
  execv(victim_path().c_str(), arguments.data());
  _exit(127);
}

/// Fills a pipe; the number of bytes that it took.
std::size_t fill(const char* path) {
  const int writer = open(path, O_WRONLY | O_NONBLOCK | O_CLOEXEC);
  const std::array<char, 4096> page{};
  std::size_t filled = 0;
  for (ssize_t taken = 0; taken >= 0; taken = write(writer, page.data(), page.size())) {
    filled += static_cast<std::size_t>(taken);
  }
  close(writer);
  return filled;
}

/// The seconds of a report's time.
std::time_t seconds(const std::string& text) {
  std::tm time{};
  const char* end = strptime(text.c_str(), "%c", &time);
  EXPECT_TRUE(end != nullptr && *end == '\0') << text;
  time.tm_isdst = -1;
  return std::mktime(&time);
}

}  // namespace

std::string end_t::error_text() const {
  std::string text;
  for (const auto& piece : error_writes) {
    text += piece;
  }
  return text;
}

channel_t::channel_t() {
  std::array<int, 2> ends{-1, -1};
  [[maybe_unused]] const int made = socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data());
  receiver = ends[0];
  sender = ends[1];
}

channel_t::~channel_t() {
  close(receiver);
  close_sender();
}

std::string channel_t::packet() const {
  std::array<char, 8192> buffer{};
  const ssize_t size = recv(receiver, buffer.data(), buffer.size(), 0);
  return {buffer.data(), size > 0 ? static_cast<std::size_t>(size) : 0};
}

std::vector<std::string> channel_t::packets() const {
  std::vector<std::string> all;
  for (std::string next = packet(); !next.empty(); next = packet()) {
    all.push_back(next);
  }
  return all;
}

void channel_t::close_sender() {
  if (sender >= 0) {
    close(std::exchange(sender, -1));
  }
}

victim_t::victim_t(std::vector<std::string> words) : child(fork()) {
  if (child == 0) {
    words.insert(words.begin(), name);
    execute(std::move(words), input.receiver, output.sender, error.sender);
  }
  output.close_sender();
  error.close_sender();
}

victim_t::~victim_t() {
  if (child > 0) {
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
  }
}

std::string victim_t::line() { return lines.emplace_back(output.packet()); }

void victim_t::go_on() const { [[maybe_unused]] const ssize_t sent = send(input.sender, "\n", 1, MSG_NOSIGNAL); }

end_t victim_t::end() {
  end_t end;
  end.error_writes = error.packets();
  for (std::string& rest : output.packets()) {
    lines.push_back(std::move(rest));
  }
  end.lines = lines;
  int status = 0;
  waitpid(std::exchange(child, -1), &status, 0);
  end.status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
  return end;
}

end_t crash(std::vector<std::string> words) { return victim_t(std::move(words)).end(); }

holding_log_t::holding_log_t(const char* path) : watch(inotify_init1(IN_CLOEXEC)) {
  mkfifo(path, 0600);
  reader = open(path, O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  filling = fill(path);
  inotify_add_watch(watch, path, IN_OPEN);
}

holding_log_t::~holding_log_t() {
  close(reader);
  close(watch);
}

bool holding_log_t::wait_for_reporter() const {
  pollfd opened{watch, POLLIN, 0};
  return poll(&opened, 1, patience_ms) == 1;
}

std::string holding_log_t::release() const {
  fcntl(reader, F_SETFL, 0);
  std::string all;
  std::array<char, 4096> buffer{};
  ssize_t size = 0;
  do {
    all.append(buffer.data(), static_cast<std::size_t>(size));
    size = read(reader, buffer.data(), buffer.size());
  } while (size > 0);
  return all.substr(filling);
}

bool blocks(pid_t process, pid_t thread, int signal) {
  std::ifstream status("/proc/" + std::to_string(process) + "/task/" + std::to_string(thread) + "/status");
  const std::string label = "SigBlk:";
  for (std::string line; std::getline(status, line);) {
    if (line.starts_with(label)) {
      return (std::stoull(line.substr(label.size()), nullptr, 16) >> (signal - 1) & 1) != 0;
    }
  }
  return false;
}

crash_report_t report_on_standard_error(const end_t& end) {
  const std::string text = end.error_text();
  crash_report_reader_t reader(text);
  const crash_report_t read = reader.report();
  EXPECT_EQ(reader.unread(), test_support::crash_report_trailer);
  return read;
}

FatalSignal::FatalSignal() {
  unsetenv("TZ");  // as on the appliance; it is then that the C library looks for changes of the zone
  tzset();
  for (const char* folder : {"/media/log", "/var/log"}) {
    std::filesystem::create_directories(folder);
  }
}

void FatalSignal::expect_report(const crash_report_t& report, const std::string& signal, const std::string& code,
                                const std::string& address) const {
  EXPECT_EQ(report.program, victim_t::name);
  EXPECT_EQ(report.signal, signal);
  EXPECT_EQ(report.code, code);
  EXPECT_EQ(report.address, address);
  EXPECT_GE(seconds(report.time), begin);
  EXPECT_LE(seconds(report.time), std::time(nullptr));
  EXPECT_THAT(report.stack, Not(IsEmpty()));
  EXPECT_LE(report.stack.size(), 30U);
  EXPECT_THAT(report.stack, Each(MatchesRegex(".+\\[0x[0-9a-f]+\\]")));
}

void FatalSignal::expect_reported(const end_t& end, const std::string& signal, const std::string& code,
                                  const std::string& address) const {
  EXPECT_EQ(end.status, 1);
  expect_report(report_on_standard_error(end), signal, code, address);
  expect_report(only_report_in(crash_log), signal, code, address);
  expect_report(only_report_in(second_crash_log), signal, code, address);
}

}  // namespace zyl
