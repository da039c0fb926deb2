// Crashes in the way that its arguments say, for the tests of what is reported. Ahead of a crash it tells standard
// output the address that the report must give; each of its lines there is one write.
//
//   fatal_signal_victim CRASH [LATER]
//   fatal_signal_victim queue SIGNAL CODE ADDRESS [LATER]     sends itself the signal
//   fatal_signal_victim report SIGNAL CODE ADDRESS [LATER]    reports it without having installed the handler
//
// LATER is what an exit handler crashes by. It and CRASH are one of
//
//   unmapped     writes to memory that is not there
//   forbidden    writes to memory that may not be written
//   bus          writes behind the end of a mapped file
//   illegal      runs an illegal instruction
//   abort        calls std::abort
//   terminate    calls std::terminate
//   raise        raises SIGSEGV, which is no fault
//   float        raises SIGFPE
//   deep         as "forbidden", 50 calls deep
//   unmasked     as "forbidden", with a umask of 0
//   thread       as "forbidden", on another thread, and waits for that
//   late_thread  as "forbidden"; another thread that has told its id does the same when standard input says so
//   loose_thread tells the id of another thread, which does as "forbidden"; goes on when standard input says so
//   malloc       as "forbidden", under the allocator's lock, which the exit handler wants too
//   logger       as "forbidden", under a logger's lock, which the exit handler wants too
//   late_log     as "forbidden", and logs when all static objects are destroyed
//   no_name      as "forbidden", in a program with a null name

#include <spdlog/sinks/base_sink.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include "zyl/fatal_signal.h"
#include "zyl/log/log_base.h"
#include "zyl/log/module_logger.h"

namespace {

using address_t = volatile char*;

void tell(std::string_view line) {
  [[maybe_unused]] const ssize_t ignored = write(STDOUT_FILENO, line.data(), line.size());
}

void tell_address(const volatile void* address) {
  std::array<char, 40> line{};
  const int size = std::snprintf(line.data(), line.size(), "0x%016zx\n",
                                 static_cast<std::size_t>(reinterpret_cast<std::uintptr_t>(address)));
  tell({line.data(), static_cast<std::size_t>(size)});
}

/// A page of memory, `protection` as mmap takes it.
address_t page(int protection, int flags = MAP_PRIVATE | MAP_ANONYMOUS, int fd = -1) {
  return static_cast<char*>(mmap(nullptr, static_cast<std::size_t>(getpagesize()), protection, flags, fd, 0));
}

void touch(address_t address) {
  tell_address(address);
  *address = 1;
}

void touch_unmapped() {
  address_t gone = page(PROT_READ | PROT_WRITE);
  munmap(const_cast<char*>(gone), static_cast<std::size_t>(getpagesize()));
  touch(gone + 0x123);
}

void touch_forbidden() { touch(page(PROT_NONE) + 0x123); }

void touch_behind_the_file() {
  std::FILE* file = std::tmpfile();
  touch(page(PROT_READ | PROT_WRITE, MAP_SHARED, fileno(file)) + 0x123);
}

extern "C" void illegal_instruction();
#if defined(__x86_64__)
asm(".text\n.globl illegal_instruction\nillegal_instruction:\n  ud2\n");
#elif defined(__aarch64__)
asm(".text\n.globl illegal_instruction\nillegal_instruction:\n  udf #0\n");
#else
#error "which instruction is illegal here?"
#endif

void run_illegal_instruction() {
  tell_address(reinterpret_cast<void*>(illegal_instruction));
  illegal_instruction();
}

void touch_on_another_thread() { std::thread(touch_forbidden).join(); }

// --- crashes under a lock that the exit handler wants too ---

void (*when_exiting)() = [] {};

std::mutex allocator_lock;
bool allocator_crashes = false;

void allocate() {
  void* volatile got = std::malloc(100);
  std::free(got);
}

void crash_in_malloc() {
  when_exiting = allocate;
  allocator_crashes = true;
  allocate();
}

/// A sink whose first message kills, under the sink's lock.
class deadly_sink_t : public spdlog::sinks::base_sink<std::mutex> {
 protected:
  void sink_it_(const spdlog::details::log_msg& /*message*/) override { touch_forbidden(); }
  void flush_() override {}
};

// Older than the exit handler, so that it is still there when that logs.
spdlog::logger& victim_logger = zyl::module_logger("victim");

void log() { zyl::log_base_s(victim_logger, spdlog::level::err) << "a line"; }

void crash_in_logger() {
  victim_logger.sinks() = {std::make_shared<deadly_sink_t>()};
  when_exiting = log;
  log();
}

// --- crashes on two threads ---

void wait_to_be_told() {
  char byte = 0;
  [[maybe_unused]] const ssize_t got = read(STDIN_FILENO, &byte, 1);
}

void tell_thread() { tell(std::to_string(gettid()) + "\n"); }

void crash_ahead_of_another_thread() {
  std::promise<void> told;
  std::thread([&told] {
    tell_thread();
    told.set_value();
    wait_to_be_told();
    touch_forbidden();
  }).detach();
  told.get_future().wait();
  touch_forbidden();
}

void let_another_thread_crash() {
  std::thread([] {
    tell_thread();
    touch_forbidden();
  }).detach();
  wait_to_be_told();
}

// --- crashes that other threads outlive ---

/// Tells what is logged.
class telling_sink_t : public spdlog::sinks::base_sink<std::mutex> {
 protected:
  void sink_it_(const spdlog::details::log_msg& message) override {
    tell(std::string(message.payload.data(), message.payload.size()) + "\n");
  }
  void flush_() override {}
};

void (*when_all_is_destroyed)() = [] {};

[[gnu::destructor]] void behind_the_exit_handlers() { when_all_is_destroyed(); }

void crash_and_log_late() {
  victim_logger.sinks() = {std::make_shared<telling_sink_t>()};
  when_all_is_destroyed = log;
  touch_forbidden();
}

// --- the rest ---

// What follows the call keeps it one.
[[gnu::noinline]] void touch_forbidden_in_depth(int calls) {
  if (calls == 0) {
    touch_forbidden();
  } else {
    touch_forbidden_in_depth(calls - 1);
  }
  asm volatile("");
}

void touch_forbidden_unmasked() {
  umask(0);
  touch_forbidden();
}

/// A signal as the kernel would describe it.
siginfo_t described(char** words) {
  siginfo_t info{};
  info.si_signo = std::atoi(words[0]);
  info.si_code = std::atoi(words[1]);
  info.si_addr = reinterpret_cast<void*>(std::stoul(words[2], nullptr, 16));
  return info;
}

void queue(char** words) {
  siginfo_t info = described(words);
  syscall(SYS_rt_sigqueueinfo, getpid(), info.si_signo, &info);
}

/// Tells of the way out: of the signals that can be had there, and that it was taken to its end.
void tell_exit() {
  tell("exiting\n");
  sigset_t blocked;
  pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
  for (int signal = 1; signal <= SIGSYS; ++signal) {
    if (sigismember(&blocked, signal) == 0 && signal != SIGKILL && signal != SIGSTOP) {
      std::array<char, 16> line{};
      tell({line.data(), static_cast<std::size_t>(std::snprintf(line.data(), line.size(), "open %d\n", signal))});
    }
  }
  when_exiting();
  tell("exited\n");
}

struct static_object_t {
  ~static_object_t() { tell("destroyed\n"); }
};

const std::map<std::string, void (*)()> crashes{
    {"unmapped", touch_unmapped},
    {"forbidden", touch_forbidden},
    {"bus", touch_behind_the_file},
    {"illegal", run_illegal_instruction},
    {"abort", [] { std::abort(); }},
    {"terminate", [] { std::terminate(); }},
    {"raise", [] { std::raise(SIGSEGV); }},
    {"float", [] { std::raise(SIGFPE); }},
    {"deep", [] { touch_forbidden_in_depth(50); }},
    {"unmasked", touch_forbidden_unmasked},
    {"thread", touch_on_another_thread},
    {"late_thread", crash_ahead_of_another_thread},
    {"loose_thread", let_another_thread_crash},
    {"malloc", crash_in_malloc},
    {"logger", crash_in_logger},
    {"late_log", crash_and_log_late},
    {"no_name", touch_forbidden},
};

}  // namespace

// A sanitizer has an allocator of its own.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
extern "C" void* __libc_malloc(std::size_t size);

extern "C" void* malloc(std::size_t size) {
  const std::lock_guard lock(allocator_lock);
  if (allocator_crashes) {
    touch_forbidden();
  }
  return __libc_malloc(size);
}
#endif

int main(int argc, char** argv) {
  const std::string how = argc > 1 ? argv[1] : "";
  const int described_words = how == "report" || how == "queue" ? 3 : 0;
  if (argc > 2 + described_words) {
    when_exiting = crashes.at(argv[2 + described_words]);
  }
  static static_object_t object;
  std::atexit(tell_exit);
  if (how == "report") {
    zyl::report_fatal_signal(std::atoi(argv[2]), described(argv + 2));
  }
  zyl::install_fatal_signal_handler(how == "no_name" ? nullptr : argv[0]);
  if (how == "queue") {
    queue(argv + 2);
  } else {
    crashes.at(how)();
  }
  return 0;
}
