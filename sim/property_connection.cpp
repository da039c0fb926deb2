#include "sim/property_connection.h"

#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <utility>

namespace sim {
namespace {

std::string name_of_peer(int socket) {
  ucred peer{};
  socklen_t size = sizeof peer;
  std::string name;
  if (getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &peer, &size) == 0 && peer.pid > 0) {
    std::ifstream comm("/proc/" + std::to_string(peer.pid) + "/comm");
    std::getline(comm, name);
  }
  return name.empty() ? "client" : name;
}

bool would_block() { return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR; }

}  // namespace

property_connection_t::property_connection_t(event_base* base, descriptor_t connected,
                                             request_handler_t request_handler, end_handler_t end_handler)
    : socket(std::move(connected)),
      client_name(name_of_peer(socket.get())),
      on_request(std::move(request_handler)),
      on_end(std::move(end_handler)),
      readable(event_new(base, socket.get(), EV_READ | EV_PERSIST, on_readable, this)),
      writable(event_new(base, socket.get(), EV_WRITE | EV_PERSIST, on_writable, this)) {
  event_add(readable.get(), nullptr);
}

void property_connection_t::send(std::initializer_list<std::string_view> fields) {
  if (!ending) {
    zyl::append_frame(pending, fields);
    send_pending();
  }
}

void property_connection_t::send_bytes(std::string_view bytes) {
  if (!ending) {
    pending += bytes;
    send_pending();
  }
}

void property_connection_t::send_pending() {
  if (!flush() || pending.size() > pending_limit) {
    end_later();
  }
}

// Whoever sends may be walking over all clients, so the end is told from the loop.
void property_connection_t::end_later() {
  ending = true;
  event_active(writable.get(), EV_WRITE, 0);
}

void property_connection_t::on_readable(evutil_socket_t /*fd*/, short /*events*/, void* self) {
  auto& client = *static_cast<property_connection_t*>(self);
  if (client.receive()) {
    client.handle_requests();
    return;
  }
  const auto end = client.on_end;
  end(client);
}

void property_connection_t::on_writable(evutil_socket_t /*fd*/, short /*events*/, void* self) {
  auto& client = *static_cast<property_connection_t*>(self);
  if (!client.ending && client.flush()) {
    client.handle_requests();
    return;
  }
  const auto end = client.on_end;
  end(client);
}

bool property_connection_t::receive() {
  std::array<char, 16384> chunk;  // NOLINT(cppcoreguidelines-pro-type-member-init): recv fills it
  const ssize_t count = recv(socket.get(), chunk.data(), chunk.size(), MSG_DONTWAIT);
  if (count <= 0) {
    return count < 0 && would_block();
  }
  frames.append({chunk.data(), static_cast<std::size_t>(count)});
  return true;
}

void property_connection_t::handle_requests() {
  while (!ending && may_read()) {
    frames.resynchronise();
    const auto* fields = frames.next_frame();
    if (fields == nullptr) {
      event_add(readable.get(), nullptr);
      return;
    }
    on_request(*this, *fields);
  }
  event_del(readable.get());
}

// Sends what the client takes; false when the connection is broken.
bool property_connection_t::flush() {
  std::size_t sent = 0;
  ssize_t count = 0;
  while (sent < pending.size() && count >= 0) {
    count = ::send(socket.get(), pending.data() + sent, pending.size() - sent, MSG_DONTWAIT | MSG_NOSIGNAL);
    sent += static_cast<std::size_t>(std::max<ssize_t>(count, 0));
  }
  if (count < 0 && !would_block()) {
    return false;
  }
  pending.erase(0, sent);
  if (pending.empty()) {
    event_del(writable.get());
  } else {
    event_add(writable.get(), nullptr);
  }
  return true;
}

}  // namespace sim
