#pragma once

#include <unistd.h>

#include <utility>

namespace sim {

/// Owns a file descriptor; -1 is none.
class descriptor_t {
 public:
  descriptor_t() = default;
  explicit descriptor_t(int owned) : fd(owned) {}
  ~descriptor_t() { reset(); }

  descriptor_t(descriptor_t&& other) noexcept : fd(std::exchange(other.fd, -1)) {}
  descriptor_t& operator=(descriptor_t&& other) noexcept {
    std::swap(fd, other.fd);
    return *this;
  }
  descriptor_t(const descriptor_t&) = delete;
  descriptor_t& operator=(const descriptor_t&) = delete;

  int get() const { return fd; }
  explicit operator bool() const { return fd >= 0; }

  /// Hands it to somebody else, who owns it from then on.
  int release() { return std::exchange(fd, -1); }

  void reset() {
    if (fd >= 0) {
      close(fd);
    }
    fd = -1;
  }

 private:
  int fd = -1;
};

}  // namespace sim
