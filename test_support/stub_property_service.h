#pragma once

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <optional>
#include <string>

#include "zyl/property_client.h"

namespace test_support {

/// A property service at its literal path that lets clients connect and stays silent. It has no thread, so a test may
/// fork beside it.
class stub_property_service_t {
 public:
  stub_property_service_t() {
    ::unlink(zyl::property_service_path);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::string(zyl::property_service_path).copy(address.sun_path, sizeof address.sun_path - 1);
    EXPECT_EQ(::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(::listen(listener, 16), 0);
  }

  ~stub_property_service_t() {
    ::close(listener);
    ::unlink(zyl::property_service_path);
  }

  stub_property_service_t(const stub_property_service_t&) = delete;
  stub_property_service_t& operator=(const stub_property_service_t&) = delete;
  stub_property_service_t(stub_property_service_t&&) = delete;
  stub_property_service_t& operator=(stub_property_service_t&&) = delete;

  /// The service's end of the next connection, owned by the caller; -1 if no client waits.
  int accept() const { return ::accept(listener, nullptr, nullptr); }

  /// All that the next client sent before it closed. Nothing if no client waits.
  std::optional<std::string> accept_and_read() const {
    const int peer = accept();
    if (peer < 0) {
      return std::nullopt;
    }
    std::string heard;
    std::array<char, 4096> chunk{};
    ssize_t count = 0;
    while ((count = ::recv(peer, chunk.data(), chunk.size(), 0)) > 0) {
      heard.append(chunk.data(), static_cast<std::size_t>(count));
    }
    ::close(peer);
    return heard;
  }

 private:
  const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
};

}  // namespace test_support
