#include "zyl/fatal_signal.h"

#include <execinfo.h>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <string_view>

#include "zyl/fatal_signal_texts.h"

namespace zyl {
namespace {

constexpr const char* log_file = "/media/log/stacktrace";
constexpr const char* second_log_file = "/var/log/stacktrace_new";

constexpr std::array fatal_signals{SIGILL, SIGSEGV, SIGBUS, SIGABRT};

constexpr int deepest_stack = 30;
constexpr unsigned hang_limit_s = 5;

const char* program_name = "(unknown application)";

/// The kernel's id of the thread that crashed first; 0 before.
std::atomic<pid_t> reporter{0};
static_assert(decltype(reporter)::is_always_lock_free);

/// What the report says, but for the time, which is each target's own.
struct crash_t {
  const char* signal = nullptr;
  const char* code = nullptr;
  std::array<char, 18> address{};  // not terminated
  std::array<void*, deepest_stack> stack{};
  int depth = 0;
};

using time_text_t = std::array<char, 128>;

constexpr std::size_t banner_width = 80;

constexpr auto banner(std::string_view head) {
  std::array<char, banner_width + 1> line{};
  for (std::size_t i = 0; i < banner_width; ++i) {
    line[i] = i < head.size() ? head[i] : '=';
  }
  line[banner_width] = '\n';
  return line;
}

constexpr auto begin_banner = banner("==== begin fatal error ");
constexpr auto end_banner = banner("==== end fatal error ");

std::array<char, 18> hex_address(const void* address) {
  std::array<char, 18> text{'0', 'x'};
  auto rest = reinterpret_cast<std::uintptr_t>(address);
  for (std::size_t i = text.size(); i > 2; --i) {
    text[i - 1] = "0123456789abcdef"[rest % 16];
    rest /= 16;
  }
  return text;
}

// The local time is not meant for a signal handler, but once the zone is known all that it takes is a lock. Not
// `localtime`: without TZ in the environment that allocates at every call, to look whether the zone has changed.
time_text_t time_text() {
  time_text_t text{};
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  if (localtime_r(&now, &local) == nullptr || std::strftime(text.data(), text.size(), "%c", &local) == 0) {
    text[0] = '\0';
  }
  return text;
}

// There is nobody left to be told of a failure.
void put(int fd, std::string_view piece) {
  [[maybe_unused]] const ssize_t ignored = ::write(fd, piece.data(), piece.size());
}

template <std::size_t size>
void put(int fd, const std::array<char, size>& piece) {
  put(fd, std::string_view(piece.data(), size));
}

void put_line(int fd, std::string_view label, std::string_view text) {
  put(fd, label);
  put(fd, text);
  put(fd, "\n");
}

void write_report(int fd, const crash_t& crash) {
  const time_text_t time = time_text();
  put(fd, begin_banner);
  put_line(fd, "program: ", program_name != nullptr ? program_name : "");
  put_line(fd, "time: ", time.data());
  put_line(fd, "signal: ", crash.signal);
  put_line(fd, "code: ", crash.code);
  put_line(fd, "address: ", std::string_view(crash.address.data(), crash.address.size()));
  put(fd, "stack backtrace:\n");
  backtrace_symbols_fd(crash.stack.data(), crash.depth, fd);
  put(fd, "dev hint: nm -C -n [program] | grep 0000[address]\n");
  put(fd, end_banner);
}

void append_report(const char* path, const crash_t& crash) {
  const int fd = ::open(path, O_RDWR | O_CREAT | O_APPEND, 0777);
  write_report(fd, crash);
  ::close(fd);
}

void write_where_it_went() {
  put(STDERR_FILENO, "(this data was appended to ");
  put(STDERR_FILENO, log_file);
  put(STDERR_FILENO, " or ");
  put(STDERR_FILENO, second_log_file);
  put(STDERR_FILENO, ")");
  put(STDERR_FILENO, "\n");
}

// Returns on the thread that crashes first. It may be here again from one of its exit handlers, which must not end in
// another report, nor in a second round of exit handlers. Other threads must not cut it short.
void claim_the_report() {
  const pid_t self = ::gettid();
  pid_t first = 0;
  if (reporter.compare_exchange_strong(first, self)) {
    return;
  }
  if (first == self) {
    ::_exit(EXIT_FAILURE);
  }
  for (;;) {
    ::pause();
  }
}

void on_fatal_signal(int signal, siginfo_t* info, void* /*context*/) { report_fatal_signal(signal, *info); }

void take_fatal_signals() {
  struct sigaction action {};
  action.sa_sigaction = on_fatal_signal;
  action.sa_flags = SA_SIGINFO;
  sigfillset(&action.sa_mask);
  for (const int signal : fatal_signals) {
    sigaction(signal, &action, nullptr);
  }
}

void end_at_once(int /*signal*/) { ::_exit(EXIT_FAILURE); }

void take_the_alarm() {
  struct sigaction action {};
  action.sa_handler = end_at_once;
  sigaction(SIGALRM, &action, nullptr);
}

// What was held back during the report must not end the process ahead of its exit handlers.
void forget_pending(const sigset_t& signals) {
  const timespec no_time{};
  while (sigtimedwait(&signals, nullptr, &no_time) > 0) {
  }
}

// An exit handler may hang, as what crashed may have held the allocator's lock or a logger's. It may also crash, and a
// fault whose signal is blocked would end the process by that signal.
void guard_the_exit() {
  take_fatal_signals();
  take_the_alarm();
  sigset_t signals;
  sigemptyset(&signals);
  sigaddset(&signals, SIGALRM);
  for (const int signal : fatal_signals) {
    sigaddset(&signals, signal);
  }
  forget_pending(signals);
  pthread_sigmask(SIG_UNBLOCK, &signals, nullptr);
  ::alarm(hang_limit_s);
}

// The first calls load libraries and files, which allocates; so they must not be the handler's.
void call_for_the_first_time() {
  std::array<void*, 1> stack{};
  backtrace(stack.data(), static_cast<int>(stack.size()));
  ::tzset();
  time_text();
}

}  // namespace

void install_fatal_signal_handler(const char* name) {
  program_name = name;
  call_for_the_first_time();
  take_fatal_signals();
}

void report_fatal_signal(int signal, const siginfo_t& info) {
  claim_the_report();
  crash_t crash;
  crash.depth = backtrace(crash.stack.data(), deepest_stack);
  crash.signal = fatal_signal_text(signal);
  crash.code = fatal_code_text(signal, info.si_code);
  crash.address = hex_address(info.si_addr);
  append_report(log_file, crash);
  append_report(second_log_file, crash);
  write_report(STDERR_FILENO, crash);
  write_where_it_went();
  guard_the_exit();
  // By way of the exit handlers: they are part of how the program ends, also in a crash.
  std::exit(EXIT_FAILURE);  // NOLINT(concurrency-mt-unsafe)
}

}  // namespace zyl
