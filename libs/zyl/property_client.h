#pragma once

#include <cstdint>
#include <string>

#include "zyl/property_frame.h"

namespace zyl {

/// Where the property service listens.
inline constexpr const char* property_service_path = "/tmp/.tarn_property_ipc";

/// What a client of the property bus can do. The bus is a service of the appliance that keeps text values under paths.
///
/// A request is one frame; its result is whether all of the frame's bytes went out, not whether the service did what
/// was asked. Nothing throws for a failure of the bus. One thread; see `property_client_t` for limits.
class property_client_intf_t {
 public:
  virtual ~property_client_intf_t() = default;

  /// Opens the connection. False if there is no service.
  virtual bool connect() = 0;
  /// Closes it; nothing happens if it is closed.
  virtual void disconnect() = 0;
  /// Whether there is a connection, be it one that the service has left.
  virtual bool is_connected() = 0;

  /// Asks that the property exist. An existing one keeps its value.
  virtual bool create(const std::string& path) = 0;
  /// Asks for the value, which comes as a message.
  virtual bool get(const std::string& path) = 0;
  /// Asks that the property have the value.
  virtual bool set(const std::string& path, const std::string& value) = 0;
  /// Asks for what lies below the path, which comes as messages.
  virtual bool list(const std::string& path) = 0;
  /// Asks that each later change come as a message.
  virtual bool monitor(const std::string& path) = 0;
  /// `get`, and the value that came within `timeout_ms` milliseconds; a negative time is without end. True also for a
  /// property that does not exist, which is empty. False, with an empty value, if no answer came.
  virtual bool read(const std::string& path, std::string& value, int timeout_ms) = 0;
};

/// A connection to the property service, a Unix stream socket at "/tmp/.tarn_property_ipc".
///
/// Frames and fields are laid out in property_frame.h. The first field is the command.
///
///   requests   "create" path          make the property exist
///              "get" path             ask for its value; the answer is a "get_response"
///              "set" path value       write it
///              "list" path            ask for what lies below the path
///              "monitor" path         subscribe: every later change comes as "changed"
///              "get_all"              ask for everything
///   responses  "get_response" path value
///              "changed" path value
///              "error" "no_property" (any)
///
/// The whole payload of a frame, which is command, path and value with their length fields, must be at most 65535
/// bytes: lengths are truncated to 16 bits without a check. A request blocks for at most a second at a time while the
/// socket takes nothing, and is never repeated. Nothing is logged about failed requests, there is no reconnection, and
/// a client that is not connected refuses everything at once. One thread, no lock.
class property_client_t : public property_client_intf_t {
 public:
  property_client_t() = default;
  ~property_client_t() override;

  property_client_t(const property_client_t&) = delete;
  property_client_t& operator=(const property_client_t&) = delete;
  property_client_t(property_client_t&&) = delete;
  property_client_t& operator=(property_client_t&&) = delete;

  /// Opens the connection, anew if there is one. False without a service; there is no second attempt.
  bool connect() override;

  /// Closes the connection and forgets what it brought. Nothing happens to one that is closed.
  void disconnect() override;

  /// Whether there is a descriptor; it stays true after the service has gone.
  bool is_connected() override { return socket.fd >= 0; }

  bool create(const std::string& path) override;
  bool get(const std::string& path) override;
  bool set(const std::string& path, const std::string& value) override;
  bool list(const std::string& path) override;
  bool monitor(const std::string& path) override;

  /// Asks for everything; what answers is for `receive`.
  bool get_all();

  /// `get`, and a wait of `timeout_ms` for the answer, as `receive` waits. A property that does not exist
  /// reads as empty. False, with an empty value, if there is no answer or another message was in front of it, which is
  /// lost: for clients that do not monitor.
  bool read(const std::string& path, std::string& value, int timeout_ms) override;

  /// Takes the next message of three fields and waits `timeout_ms` milliseconds for it, without end if that is
  /// negative; bytes that make no whole message start the wait anew. With 0 it does not wait: call it until it returns
  /// false.
  ///
  /// A message with another number of fields gives the command "error" and the path "bad_payload", and true only if
  /// there are further bytes to look at. What the service wrote last before it closed is not read.
  bool receive(std::string& command, std::string& path, std::string& value, int timeout_ms);

  /// Whether the service had closed its end when a request or `receive` last looked. The descriptor is then readable
  /// without end, so who watches it must stop. Messages that came earlier may still be there to be received.
  bool hung_up() const { return gone; }

  /// For watching readability; -1 while not connected.
  int32_t descriptor() const { return socket.fd; }

 private:
  struct client_socket_t {
    std::string path = property_service_path;
    int32_t fd = -1;
  };

  bool send(std::initializer_list<std::string_view> fields);
  bool drain();
  bool more_comes(int timeout_ms);
  bool is_ready_within(short event, int timeout_ms);

  client_socket_t socket;
  property_frame_buffer_t rx_buffer;
  /// The frame that is sent, for its memory.
  std::string tx_frame;
  bool gone = false;
};

}  // namespace zyl
