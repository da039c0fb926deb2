#pragma once

#include <cstdint>
#include <string>

#include "zyl/property_frame.h"

namespace zyl {

/// Where the property service listens.
inline constexpr const char* property_service_path = "/tmp/.tarn_property_ipc";

/// What a client of the property bus can do. The bus is a service of the appliance that keeps text values under paths.
///
/// Each call sends one frame and returns whether all of its bytes went out; see `property_client_t`.
class property_client_intf_t {
 public:
  virtual ~property_client_intf_t() = default;

  virtual bool connect() = 0;
  virtual void disconnect() = 0;
  virtual bool is_connected() = 0;
  virtual bool create(const std::string& path) = 0;
  virtual bool get(const std::string& path) = 0;
  virtual bool set(const std::string& path, const std::string& value) = 0;
  virtual bool list(const std::string& path) = 0;
  virtual bool monitor(const std::string& path) = 0;
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

  /// `get`, and a wait of `timeout_ms` for the answer. A property that does not exist reads as empty. False, with an
  /// empty value, if there is no answer or another message was in front of it, which is lost: for clients that do not
  /// monitor.
  bool read(const std::string& path, std::string& value, int timeout_ms) override;

  /// Takes the next message of three fields. With `timeout_ms` 0 it does not wait: call it until it returns false.
  ///
  /// A message with another number of fields gives the command "error" and the path "bad_payload", and true only if
  /// there are further bytes to look at. What the service wrote last before it closed is not read.
  bool receive(std::string& command, std::string& path, std::string& value, int timeout_ms);

  /// Whether the last `receive` left nothing behind: no byte that waits for the rest of its frame, and nothing in the
  /// socket when it looked. Who hears of readability from a loop need not call it again then.
  bool exhausted() const { return !may_have_more && rx_buffer.empty(); }

  /// Whether the service has closed its end. The descriptor is then readable without end, so who watches it must stop.
  bool hung_up() const;

  /// For watching readability; -1 while not connected.
  int32_t descriptor() const { return socket.fd; }

 private:
  struct client_socket_t {
    std::string path = property_service_path;
    int32_t fd = -1;
  };

  bool send(std::initializer_list<std::string_view> fields);
  void drain();
  bool more_comes(int timeout_ms);
  int events_within(short events, int timeout_ms) const;

  client_socket_t socket;
  property_frame_buffer_t rx_buffer;
  /// The frame that is sent, for its memory.
  std::string tx_frame;
  /// Whether the last look at the socket may have left bytes in it.
  bool may_have_more = false;
  /// Whether nothing was sent since the socket was seen to have room.
  bool may_send = false;
  bool stream_ended = false;
};

}  // namespace zyl
