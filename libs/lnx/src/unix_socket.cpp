#include "lnx/src/unix_socket.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <optional>

#include "zyl/log/module_logger.h"

namespace lnx {
namespace {

// Failures are told by results alone. The logger exists for its entry in the level file.
[[maybe_unused]] const auto& module_log = zyl::module_logger("lin_ipc");

/// Room for the ancillary records of one message.
constexpr std::size_t control_size = 512;

int result_of(int returned) { return returned < 0 ? -errno : 0; }

/// No value if the path does not fit.
std::optional<sockaddr_un> address_of(const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  if (path.size() >= sizeof address.sun_path) {
    return std::nullopt;
  }
  std::memcpy(address.sun_path, path.data(), path.size());
  return address;
}

/// The path of an address that the kernel filled; empty for a peer that is not bound.
std::string path_of(const sockaddr_un& address, socklen_t length) {
  return length == 0 ? std::string()
                     : std::string(address.sun_path, strnlen(address.sun_path, sizeof address.sun_path));
}

bool is_connected_type(int32_t type) { return type == SOCK_STREAM || type == SOCK_SEQPACKET; }

/// The records one behind the other, each on the boundary where the kernel looks for it.
std::vector<std::byte> control_of(std::span<const cmsg_t> cmsgs) {
  std::vector<std::byte> control;
  for (const cmsg_t& cmsg : cmsgs) {
    control.resize(CMSG_ALIGN(control.size()));
    const std::span<const std::byte> image = cmsg.image();
    control.insert(control.end(), image.begin(), image.end());
  }
  return control;
}

}  // namespace

unix_socket_t::unix_socket_t(int32_t descriptor) : fd(descriptor) {
  socklen_t length = sizeof type;
  if (fd > 0 && getsockopt(fd, SOL_SOCKET, SO_TYPE, &type, &length) < 0) {
    type = -1;
  }
}

unix_socket_t::~unix_socket_t() {
  if (is_open()) {
    close();
  }
}

int unix_socket_t::create(int socket_type) {
  if (is_open()) {
    return -EBUSY;
  }
  const int created = ::socket(AF_UNIX, socket_type | SOCK_CLOEXEC, 0);
  if (created < 0) {
    return -errno;
  }
  fd = created;
  type = socket_type;
  return 0;
}

int unix_socket_t::close() {
  const int result = result_of(::close(fd));
  if (result == 0) {
    fd = -1;
  }
  return result;
}

int unix_socket_t::bind(const std::string& path) {
  const auto address = address_of(path);
  if (!address) {
    return -ENAMETOOLONG;
  }
  return result_of(::bind(fd, reinterpret_cast<const sockaddr*>(&*address), sizeof *address));
}

int unix_socket_t::connect(const std::string& path) {
  const auto address = address_of(path);
  if (!address) {
    return -ENAMETOOLONG;
  }
  return result_of(::connect(fd, reinterpret_cast<const sockaddr*>(&*address), sizeof *address));
}

int unix_socket_t::listen(int backlog) { return result_of(::listen(fd, backlog)); }

int unix_socket_t::accept(unix_socket_t& out_peer, std::string* out_name) {
  if (out_peer.is_open()) {
    return -EBUSY;
  }
  sockaddr_un address{};
  socklen_t length = sizeof address;
  const int accepted = ::accept4(fd, reinterpret_cast<sockaddr*>(&address), &length, SOCK_CLOEXEC);
  if (accepted < 0) {
    return -errno;
  }
  out_peer.fd = accepted;
  out_peer.type = type;
  if (out_name != nullptr) {
    *out_name = path_of(address, length);
  }
  return 0;
}

int unix_socket_t::set_blocking(bool blocking) {
  const int flags = fcntl(fd, F_GETFL);
  if (flags < 0) {
    return -errno;
  }
  return result_of(fcntl(fd, F_SETFL, blocking ? flags & ~O_NONBLOCK : flags | O_NONBLOCK));
}

std::size_t unix_socket_t::pending_size() const {
  int count = 0;
  return ioctl(fd, FIONREAD, &count) < 0 ? 0 : static_cast<std::size_t>(count);
}

ssize_t unix_socket_t::sendmsg(std::span<const iovec> buffers, const std::string* dest, std::span<const cmsg_t> cmsgs) {
  msghdr message{};
  message.msg_iov = const_cast<iovec*>(buffers.data());  // the kernel only reads it
  message.msg_iovlen = buffers.size();

  std::optional<sockaddr_un> address;
  if (dest != nullptr && !dest->empty() && !is_connected_type(type)) {
    address = address_of(*dest);
    if (!address) {
      return -ENAMETOOLONG;
    }
    message.msg_name = &*address;
    message.msg_namelen = sizeof *address;
  }

  std::vector<std::byte> control = control_of(cmsgs);
  message.msg_control = control.empty() ? nullptr : control.data();
  message.msg_controllen = control.size();

  const ssize_t sent = ::sendmsg(fd, &message, 0);
  return sent < 0 ? -errno : sent;
}

ssize_t unix_socket_t::recvmsg(void* buffer, std::size_t length, std::string* out_from,
                               std::vector<cmsg_t>* out_cmsgs) {
  iovec target{buffer, length};
  msghdr message{};
  message.msg_iov = &target;
  message.msg_iovlen = 1;
  sockaddr_un address{};
  if (out_from != nullptr) {
    out_from->clear();
    message.msg_name = &address;
    message.msg_namelen = sizeof address;
  }
  alignas(cmsghdr) std::array<std::byte, control_size> control{};
  if (out_cmsgs != nullptr) {
    out_cmsgs->clear();
    message.msg_control = control.data();
    message.msg_controllen = control.size();
  }

  const ssize_t received = ::recvmsg(fd, &message, 0);
  if (received < 0) {
    return -errno;
  }
  if (out_from != nullptr) {
    *out_from = path_of(address, message.msg_namelen);
  }
  if (out_cmsgs != nullptr) {
    *out_cmsgs = parse_cmsgs(std::span(control).first(message.msg_controllen));
  }
  return received;
}

}  // namespace lnx
