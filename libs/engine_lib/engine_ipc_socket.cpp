#include "engine_lib/engine_ipc_socket.h"

#include <poll.h>

#include <array>
#include <cerrno>
#include <iterator>
#include <string_view>
#include <utility>

#include "engine_lib/engine_ipc_crc.h"
#include "zyl/assert.h"
#include "zyl/log/module_logger.h"

static auto& module_log = zyl::module_logger("eng_engine_ipc");
#include "zyl/log/log_bind.h"

namespace eipc {
namespace {

iovec buffer_of(std::string_view bytes) { return {const_cast<char*>(bytes.data()), bytes.size()}; }

}  // namespace

void socket_t::add_receiver(receiver_t* r, const std::set<message_type>& types) {
  const zyl::lock_t lock(mutex);
  for (const message_type& kind : types) {
    receivers.emplace(kind, r);
  }
}

void socket_t::remove_receiver(receiver_t* r) {
  const zyl::lock_t lock(mutex);
  std::erase_if(receivers, [r](const auto& entry) { return entry.second == r; });
}

ssize_t socket_t::sendto(const message_type& kind, const message_base_t& msg, const std::string& dest) {
  zyl::datastream_strio_t payload;
  zyl::datastream_strio_t header;
  std::vector<lnx::cmsg_t> cmsgs;
  msg.serialize(payload, cmsgs);

  common_t common;
  common.family = static_cast<uint32_t>(kind.family);
  common.type = static_cast<uint32_t>(kind.type);
  common.len = static_cast<uint32_t>(payload.data().size());
  common.crc = crc32(payload.data());
  std::vector<lnx::cmsg_t> none;
  common.serialize(header, none);
  if (verbose) {
    log_info_s() << "socket_t::sendto() size of msg: " << common.len;
    log_info_s() << "                size of common: " << header.data().size();
  }
  const std::array buffers{buffer_of(header.data()), buffer_of(payload.data())};
  return sendmsg(buffers, &dest, cmsgs);
}

int socket_t::get_message(std::string& out_from, message_type& out_kind, zyl::datastream_strio_t& out_data,
                          std::vector<lnx::cmsg_t>& out_cmsgs, int timeout_ms) {
  pollfd watched{fd, POLLIN | POLLPRI | POLLRDHUP, 0};
  const int result = ::poll(&watched, 1, timeout_ms);
  if (result < 0) {
    return -errno;
  }
  if (result == 0) {
    return 0;
  }
  ZYL_ASSERT(result == 1);
  if ((watched.revents & POLLIN) == 0) {
    return without_message(watched.revents);
  }
  const ssize_t size = receive_frame(out_from, out_cmsgs);
  if (size < 0) {
    return static_cast<int>(size);
  }
  if (size == 0) {
    return without_message(watched.revents);
  }
  return take_frame(out_kind, out_data, static_cast<std::size_t>(size));
}

int socket_t::without_message(short revents) const {
  if ((revents & (POLLHUP | POLLRDHUP)) != 0) {
    return -ECONNRESET;
  }
  return (revents & POLLERR) != 0 ? -EIO : 0;
}

// Several packets may wait, and their sizes are told as a sum: what counts is what the one read returned.
ssize_t socket_t::receive_frame(std::string& out_from, std::vector<lnx::cmsg_t>& out_cmsgs) {
  const std::size_t pending = pending_size();
  if (verbose) {
    log_info_s() << "socket_t::process pending size on socket " << pending;
  }
  receive_buffer.clear();
  receive_buffer.resize(pending);
  return recvmsg(receive_buffer.data(), receive_buffer.size(), &out_from, &out_cmsgs);
}

int socket_t::take_frame(message_type& out_kind, zyl::datastream_strio_t& out_data, std::size_t size) const {
  if (verbose) {
    log_info_s() << "socket_t::process read chars " << size;
  }
  zyl::datastream_strio_t frame(std::string(receive_buffer.data(), size));
  common_t common;
  frame >> common;
  if (verbose) {
    log_info_s() << "        common.len " << common.len << "   w.data().size() " << frame.data().size();
  }
  if (size < common_t::wire_size || frame.data().size() != common.len) {
    return 0;
  }
  out_data = std::move(frame);
  out_kind = {static_cast<int32_t>(common.family), static_cast<int32_t>(common.type)};
  return 1;
}

int socket_t::process() {
  for (;;) {
    std::string from;
    message_type kind;
    zyl::datastream_strio_t data;
    std::vector<lnx::cmsg_t> cmsgs;
    const int result = get_message(from, kind, data, cmsgs, 0);
    if (result <= 0) {
      return result;
    }
    deliver(from, kind, data, cmsgs);
  }
}

void socket_t::deliver(const std::string& from, const message_type& kind, const zyl::datastream_strio_t& data,
                       const std::vector<lnx::cmsg_t>& cmsgs) {
  const zyl::lock_t lock(mutex);
  const auto [first, last] = receivers.equal_range(kind);
  for (auto entry = first; entry != last; ++entry) {
    zyl::datastream_strio_t copy = data;
    entry->second->received(*this, from, kind, copy, cmsgs);
  }
}

}  // namespace eipc
