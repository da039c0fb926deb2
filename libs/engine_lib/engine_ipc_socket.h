#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "engine_lib/engine_ipc_message.h"
#include "lnx/src/unix_socket.h"
#include "zyl/mutex.h"

namespace eipc {

class socket_t;

/// Somebody who wants messages. Does not own the socket and is not owned by it.
class receiver_t {
 public:
  receiver_t() = default;
  receiver_t(const receiver_t&) = default;
  receiver_t& operator=(const receiver_t&) = default;
  receiver_t(receiver_t&&) = default;
  receiver_t& operator=(receiver_t&&) = default;
  virtual ~receiver_t() = default;

  /// A message of a registered type came. `from` is the sender's path, empty if it has none; `data` is this receiver's
  /// own copy of the payload; who takes a descriptor out of `cmsgs` owns it, and if nobody does it stays open.
  ///
  /// Runs on the thread of `socket_t::process`, which holds the lock of the receivers: it must not add or remove any on
  /// this socket.
  virtual void received(socket_t& sk, const std::string& from, const message_type& type, zyl::datastream_strio_t& data,
                        const std::vector<lnx::cmsg_t>& cmsgs) = 0;
};

/// A unix socket of a type that keeps message boundaries, carrying frames: each is a `common_t` and its payload in one
/// datagram or packet.
///
/// `process` and `sendto` may run on different threads. The rest belongs to the owner.
class socket_t : public lnx::unix_socket_t {
 public:
  using unix_socket_t::unix_socket_t;

  /// Every message of one of `types` goes to `r` from now on, until it is removed. Any thread.
  void add_receiver(receiver_t* r, const std::set<message_type>& types) ZYL_EXCLUDES(mutex);

  /// Any thread; afterwards `r` is not called any more.
  void remove_receiver(receiver_t* r) ZYL_EXCLUDES(mutex);

  /// Sends one frame. `dest` is the path to send to, ignored on a connected socket. Returns the bytes sent, header
  /// included, or a negative `errno`.
  ssize_t sendto(const message_type& kind, const message_base_t& msg, const std::string& dest);

  /// Waits up to `timeout_ms` for one frame. Returns 1 for a message; 0 for none, which a frame of a wrong length is
  /// too: it is dropped; -ECONNRESET after the peer has closed, or another negative `errno`. The outputs hold a message
  /// only with 1.
  int get_message(std::string& out_from, message_type& out_kind, zyl::datastream_strio_t& out_data,
                  std::vector<lnx::cmsg_t>& out_cmsgs, int timeout_ms);

  /// Takes what waits on the socket and gives it to the receivers; for the owner's read event. Returns 0, or a negative
  /// `errno` once the connection is gone. A frame of a wrong length ends the round: the rest keeps the socket readable.
  int process() ZYL_EXCLUDES(mutex);

  /// Tells the sizes of every frame in the log. Set it before the socket is used.
  bool verbose = false;

 private:
  int without_message(short revents) const;
  ssize_t receive_frame(std::string& out_from, std::vector<lnx::cmsg_t>& out_cmsgs);
  int take_frame(message_type& out_kind, zyl::datastream_strio_t& out_data, std::size_t size) const;
  void deliver(const std::string& from, const message_type& kind, const zyl::datastream_strio_t& data,
               const std::vector<lnx::cmsg_t>& cmsgs) ZYL_EXCLUDES(mutex);

  zyl::mutex_t mutex;
  std::multimap<message_type, receiver_t*> receivers ZYL_GUARDED_BY(mutex);
  std::vector<char> receive_buffer;  // kept between frames for its memory
};

}  // namespace eipc
