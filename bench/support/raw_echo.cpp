#include "bench/support/raw_echo.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

#include "bench/support/peer_process.h"
#include "sim/unix_address.h"

namespace bench {
namespace {

using buffer_t = std::array<char, 1024>;

bool send_all(int socket, const buffer_t& buffer, std::size_t size) {
  return ::send(socket, buffer.data(), size, MSG_NOSIGNAL) == static_cast<ssize_t>(size);
}

bool receive_all(int socket, buffer_t& buffer, std::size_t size) {
  std::size_t received = 0;
  while (received < size) {
    const ssize_t count = recv(socket, buffer.data(), size - received, 0);
    if (count <= 0) {
      return false;
    }
    received += static_cast<std::size_t>(count);
  }
  return true;
}

}  // namespace

void serve_raw_echo(const char* path, std::size_t request_size, std::size_t answer_size, int ready_fd) {
  const sim::descriptor_t listener(sim::bind_unix_socket(SOCK_STREAM | SOCK_CLOEXEC, path));
  if (listen(listener.get(), 1) != 0) {
    throw std::system_error(errno, std::generic_category(), path);
  }
  tell_ready(ready_fd);
  pollfd connecting{listener.get(), POLLIN, 0};
  poll(&connecting, 1, -1);
  const sim::descriptor_t client(accept(listener.get(), nullptr, nullptr));
  buffer_t buffer{};
  while (receive_all(client.get(), buffer, request_size) && send_all(client.get(), buffer, answer_size)) {
  }
  _exit(0);  // the client has gone
}

raw_echo_client_t::raw_echo_client_t(const char* path) : socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  const sockaddr_un address = sim::unix_address(path);
  if (connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
    throw std::system_error(errno, std::generic_category(), path);
  }
}

bool raw_echo_client_t::exchange(std::size_t request_size, std::size_t answer_size) const {
  buffer_t buffer{};
  return send_all(socket.get(), buffer, request_size) && receive_all(socket.get(), buffer, answer_size);
}

}  // namespace bench
