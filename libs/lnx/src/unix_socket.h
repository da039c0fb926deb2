#pragma once

#include <sys/uio.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "lnx/src/cmsg.h"

namespace lnx {

/// An AF_UNIX socket. Owns its descriptor and closes it at the end.
///
/// Each operation is the system call of its name; unless stated it returns 0 or a negative `errno`. `sendmsg` and
/// `recvmsg` may run on different threads at once; the rest belongs to the owner.
class unix_socket_t {
 public:
  unix_socket_t() = default;

  /// Takes over an open descriptor above 0 and asks the kernel for its type.
  explicit unix_socket_t(int32_t descriptor);

  virtual ~unix_socket_t();

  unix_socket_t(const unix_socket_t&) = delete;
  unix_socket_t& operator=(const unix_socket_t&) = delete;
  unix_socket_t(unix_socket_t&&) = delete;
  unix_socket_t& operator=(unix_socket_t&&) = delete;

  /// The descriptor, -1 when closed; still owned here.
  int32_t descriptor() const { return fd; }

  bool is_open() const { return fd >= 0; }

  /// The SOCK_* value, -1 when unknown.
  int32_t socket_type() const { return type; }

  /// `socket_type` is a SOCK_* value. -EBUSY on a socket that is open.
  int create(int socket_type);

  int close();

  /// The path must leave room for its terminator in a `sockaddr_un`, else -ENAMETOOLONG.
  int bind(const std::string& path);
  int connect(const std::string& path);

  int listen(int backlog);

  /// Puts the next connection into `out_peer`, which must be closed, and the path that the other side is bound to into
  /// `out_name` unless null; most clients are bound to none.
  int accept(unix_socket_t& out_peer, std::string* out_name);

  int set_blocking(bool blocking);

  /// Bytes that wait to be read (FIONREAD), 0 when that cannot be told. SOCK_SEQPACKET: the sum of all packets.
  std::size_t pending_size() const;

  /// Sends the buffers as one message. `dest`, a path, is left out if null or empty and on connected socket types.
  /// Returns the bytes sent.
  ssize_t sendmsg(std::span<const iovec> buffers, const std::string* dest, std::span<const cmsg_t> cmsgs);

  /// Receives into `buffer`. `out_from`, unless null, gets the sender's path; `out_cmsgs`, unless null, gets the
  /// ancillary records; both lose their old content even when it fails. Returns the bytes received.
  ssize_t recvmsg(void* buffer, std::size_t length, std::string* out_from, std::vector<cmsg_t>* out_cmsgs);

 protected:
  int32_t fd = -1;
  int32_t type = -1;
};

}  // namespace lnx
