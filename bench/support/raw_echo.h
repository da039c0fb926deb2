#pragma once

#include <cstddef>

#include "sim/descriptor.h"

namespace bench {

/// Serves one client of a Unix stream socket at `path`: answers each `request_size` bytes with `answer_size`. Blocking
/// calls alone, nothing else: what the kernel asks for a round trip. For a process of its own.
[[noreturn]] void serve_raw_echo(const char* path, std::size_t request_size, std::size_t answer_size, int ready_fd);

/// Its client.
class raw_echo_client_t {
 public:
  /// Throws `std::system_error` if there is nobody at `path`.
  explicit raw_echo_client_t(const char* path);

  /// One round trip. False when the other end has gone.
  bool exchange(std::size_t request_size, std::size_t answer_size) const;

 private:
  sim::descriptor_t socket;
};

}  // namespace bench
