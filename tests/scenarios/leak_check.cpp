// Preloaded into a daemon that is built with the address sanitizer. The daemon has no end of its own at which the leak
// check would run, so SIGTERM runs it here and then ends the process.

#include <csignal>
#include <cstdlib>

#include <unistd.h>

extern "C" int __lsan_do_recoverable_leak_check();  // NOLINT(bugprone-reserved-identifier): the sanitizer's own name

namespace {

constexpr int leaks_found = 23;

void check_and_end(int /*signal*/) { _exit(__lsan_do_recoverable_leak_check() != 0 ? leaks_found : EXIT_SUCCESS); }

struct at_load_t {
  at_load_t() { std::signal(SIGTERM, check_and_end); }
};

const at_load_t at_load;

}  // namespace
