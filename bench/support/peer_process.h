#pragma once

#include <sys/types.h>

#include <atomic>
#include <cstdint>
#include <functional>

namespace bench {

/// A child process that serves a benchmark's other end, for the life of this object. Make it before there are threads.
class peer_process_t {
 public:
  /// What the child does, without an end. Once it can be connected to, something is written to `ready_fd`, which a
  /// program that it becomes inherits.
  using work_t = std::function<void(int ready_fd)>;

  /// Returns when the child is ready. Throws `std::system_error` if there can be no child, `std::runtime_error` if it
  /// ends instead of getting ready.
  explicit peer_process_t(const work_t& work);
  ~peer_process_t();

  peer_process_t(const peer_process_t&) = delete;
  peer_process_t& operator=(const peer_process_t&) = delete;
  peer_process_t(peer_process_t&&) = delete;
  peer_process_t& operator=(peer_process_t&&) = delete;

  /// How often the child has asked for memory so far; 0 for one that became another program.
  uint64_t allocation_count() const { return *allocations; }

 private:
  [[noreturn]] void serve(const work_t& work, int ready_fd) const;

  std::atomic<uint64_t>* allocations;
  pid_t child;
};

/// What the work of a peer tells with.
void tell_ready(int ready_fd);

}  // namespace bench
