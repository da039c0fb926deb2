#pragma once

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <string>
#include <vector>

namespace test_support {

/// Serves "/dev/log" in the test's sandbox and keeps what is sent there, raw ("<12>Nov 21 11:23:11 name: text").
class fake_syslog_t {
 public:
  fake_syslog_t() : fd(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0)) {
    unlink(log_path);
    const sockaddr_un address = log_address();
    bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address);
  }
  ~fake_syslog_t() {
    close(fd);
    unlink(log_path);
  }

  fake_syslog_t(const fake_syslog_t&) = delete;
  fake_syslog_t& operator=(const fake_syslog_t&) = delete;

  /// The datagrams that have arrived since the last call, in their order.
  std::vector<std::string> take() {
    std::vector<std::string> lines;
    std::array<char, 8192> buffer{};
    for (;;) {
      const ssize_t size = recv(fd, buffer.data(), buffer.size(), MSG_DONTWAIT);
      if (size < 0) {
        return lines;
      }
      lines.emplace_back(buffer.data(), static_cast<std::size_t>(size));
    }
  }

  static sockaddr_un log_address() {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::snprintf(address.sun_path, sizeof address.sun_path, "%s", log_path);
    return address;
  }

 private:
  static constexpr const char* log_path = "/dev/log";
  int fd;
};

/// While it lives, standard output goes to "/dev/log" too, one datagram a flush: so a test sees the order of both.
class stdout_to_syslog_t {
 public:
  stdout_to_syslog_t() {
    std::fflush(stdout);
    saved = dup(STDOUT_FILENO);
    const int sender = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    const sockaddr_un address = fake_syslog_t::log_address();
    connect(sender, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    dup2(sender, STDOUT_FILENO);
    close(sender);
  }
  ~stdout_to_syslog_t() {
    std::fflush(stdout);
    dup2(saved, STDOUT_FILENO);
    close(saved);
  }

  stdout_to_syslog_t(const stdout_to_syslog_t&) = delete;
  stdout_to_syslog_t& operator=(const stdout_to_syslog_t&) = delete;

 private:
  int saved = -1;
};

}  // namespace test_support
