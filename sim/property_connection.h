#pragma once

#include <cstddef>
#include <functional>
#include <initializer_list>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "sim/descriptor.h"
#include "zyl/event_ptr.h"
#include "zyl/property_frame.h"

namespace sim {

/// One client of the property service: its socket, its half-received frame, what it watches and what it has not taken
/// yet. Loop thread only.
///
/// What a client can make the service hold is bounded: requests are not read while `answers_limit` bytes wait for it,
/// and a client that lets `pending_limit` bytes of changes pile up is dropped.
class property_connection_t {
 public:
  static constexpr std::size_t answers_limit = std::size_t{256} * 1024;
  static constexpr std::size_t pending_limit = std::size_t{4} * 1024 * 1024;

  /// Texts that lie in the connection's buffer: they are good for the call that gives them.
  using fields_t = std::vector<std::string_view>;
  using request_handler_t = std::function<void(property_connection_t& client, const fields_t& fields)>;
  using end_handler_t = std::function<void(property_connection_t& client)>;

  /// Takes a connected, non-blocking socket. `on_request` gets each whole frame, `on_end` the end of the connection:
  /// it may destroy the object, and is the last thing that the object does.
  property_connection_t(event_base* base, descriptor_t socket, request_handler_t on_request, end_handler_t on_end);

  /// Sends a frame, now or when the client takes it.
  void send(std::initializer_list<std::string_view> fields);

  /// Sends bytes that may be no frame.
  void send_bytes(std::string_view bytes);

  /// The process name of the client; "client" where it cannot be seen, as in another process id namespace.
  const std::string& name() const { return client_name; }

  std::unordered_set<std::string> watched;

 private:
  static void on_readable(evutil_socket_t fd, short events, void* self);
  static void on_writable(evutil_socket_t fd, short events, void* self);
  bool receive();
  void send_pending();
  bool flush();
  void handle_requests();
  bool may_read() const { return pending.size() < answers_limit; }
  void end_later();

  descriptor_t socket;
  std::string client_name;
  request_handler_t on_request;
  end_handler_t on_end;
  zyl::property_frame_buffer_t frames;
  std::string pending;
  bool ending = false;
  zyl::event_ptr_t readable;
  zyl::event_ptr_t writable;
};

}  // namespace sim
