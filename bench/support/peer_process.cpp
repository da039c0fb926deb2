#include "bench/support/peer_process.h"

#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <exception>
#include <memory>
#include <stdexcept>
#include <system_error>

#include "bench/support/allocation_count.h"

namespace bench {
namespace {

std::system_error system_error(const char* what) { return {errno, std::generic_category(), what}; }

std::atomic<uint64_t>* shared_counter() {
  void* page = mmap(nullptr, sizeof(std::atomic<uint64_t>), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (page == MAP_FAILED) {
    throw system_error("mmap");
  }
  return std::construct_at(static_cast<std::atomic<uint64_t>*>(page), 0);
}

}  // namespace

peer_process_t::peer_process_t(const work_t& work) : allocations(shared_counter()), child(-1) {
  std::array<int, 2> ready{};
  if (pipe(ready.data()) != 0) {
    throw system_error("pipe");
  }
  child = fork();
  if (child < 0) {
    throw system_error("fork");
  }
  if (child == 0) {
    close(ready[0]);
    serve(work, ready[1]);
  }
  close(ready[1]);
  char byte = 0;
  const bool is_ready = read(ready[0], &byte, 1) == 1;
  close(ready[0]);
  if (!is_ready) {
    throw std::runtime_error("the other end did not start");
  }
}

peer_process_t::~peer_process_t() {
  kill(child, SIGKILL);
  waitpid(child, nullptr, 0);
  munmap(allocations, sizeof *allocations);
}

void peer_process_t::serve(const work_t& work, int ready_fd) const {
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  count_allocations_in(*allocations);
  try {
    work(ready_fd);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "the other end: %s\n", error.what());
  }
  _exit(1);
}

void tell_ready(int ready_fd) {
  const char byte = 0;
  if (write(ready_fd, &byte, 1) != 1) {
    throw system_error("ready");
  }
}

}  // namespace bench
