#pragma once

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>

namespace test_support {

/// A TCP socket on a port of 127.0.0.1 that the system chose, with a URL for it. Connections are refused until it
/// listens.
class loopback_listener_t {
 public:
  loopback_listener_t() {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (::bind(descriptor, reinterpret_cast<const sockaddr*>(&address), length) != 0 ||
        ::getsockname(descriptor, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
      std::abort();
    }
    port = ntohs(address.sin_port);
  }

  ~loopback_listener_t() {
    if (descriptor >= 0) {
      ::close(descriptor);
    }
  }

  loopback_listener_t(const loopback_listener_t&) = delete;
  loopback_listener_t& operator=(const loopback_listener_t&) = delete;
  loopback_listener_t(loopback_listener_t&&) = delete;
  loopback_listener_t& operator=(loopback_listener_t&&) = delete;

  /// Listens with room for many that connect at once, and gives the descriptor away.
  int listen() {
    if (::listen(descriptor, 1024) != 0) {
      std::abort();
    }
    const int given = descriptor;
    descriptor = -1;
    return given;
  }

  std::string url(const std::string& path) const { return "http://127.0.0.1:" + std::to_string(port) + path; }

 private:
  int descriptor = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  uint16_t port = 0;
};

}  // namespace test_support
