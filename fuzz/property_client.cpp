// The property client on a socket: what the service sends, as chunks that each have a length byte in front.
#include "zyl/property_client.h"

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>

#include "fuzz/plain_property_receiver.h"
#include "fuzz/target.h"

namespace {

using fuzz::require;

/// The other side of one client, without a thread.
class service_t {
 public:
  service_t() : listener(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::string_view(zyl::property_service_path).copy(address.sun_path, sizeof address.sun_path - 1);
    ::unlink(zyl::property_service_path);
    require(::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0, "the service binds");
    require(::listen(listener, 1) == 0, "the service listens");
  }

  /// Takes the connection that waits; the one before is gone.
  void accept() {
    peer = ::accept(listener, nullptr, nullptr);
    require(peer >= 0, "the client is connected");
  }

  void send(std::string_view bytes) const {
    require(::send(peer, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size()), "sends");
  }

  /// All that has come.
  std::string received() const {
    std::string all;
    std::array<char, 4096> bytes{};
    for (ssize_t count = 1; count > 0;
         all.append(bytes.data(), static_cast<std::size_t>(std::max<ssize_t>(count, 0)))) {
      count = ::recv(peer, bytes.data(), bytes.size(), MSG_DONTWAIT);
    }
    return all;
  }

  void end_sending() const { ::shutdown(peer, SHUT_WR); }
  void close() const { ::close(peer); }

 private:
  int listener;
  int peer = -1;
};

struct message_t {
  std::string command;
  std::string path;
  std::string value;

  bool operator==(const message_t&) const = default;
};

/// What `receive` gives until it gives nothing. A frame without a field ends that, as it makes the client wait for more
/// bytes whatever it has; so does a bad one with nothing behind it.
std::vector<message_t> expected_messages(fuzz::plain_property_receiver_t& plain) {
  std::vector<message_t> messages;
  for (auto frame = plain.take_frame(); frame && !frame->empty(); frame = plain.take_frame()) {
    if (frame->size() == 3) {
      messages.push_back({(*frame)[0], (*frame)[1], (*frame)[2]});
    } else if (plain.left().empty()) {
      break;
    } else {
      messages.push_back({"error", "bad_payload", ""});
    }
  }
  return messages;
}

std::vector<message_t> received_messages(zyl::property_client_t& client) {
  std::vector<message_t> messages;
  message_t message;
  while (client.receive(message.command, message.path, message.value, 0)) {
    messages.push_back(message);
  }
  return messages;
}

/// The requests that the service has heard since it was asked last.
std::vector<fuzz::frame_t> heard_by(const service_t& service) {
  fuzz::plain_property_receiver_t receiver;
  receiver.append(service.received());
  std::vector<fuzz::frame_t> requests;
  while (auto frame = receiver.take_frame()) {
    requests.push_back(*std::move(frame));
  }
  require(receiver.left().empty(), "requests are whole frames");
  return requests;
}

/// What goes out arrives unharmed, whatever it is.
void check_requests(zyl::property_client_t& client, const service_t& service, const message_t& message) {
  const auto& [command, path, value] = message;
  require(client.create(path) && client.list(path) && client.monitor(path), "requests go out");
  require(client.set(path, value) && client.get_all(), "requests go out");
  const std::vector<fuzz::frame_t> expected{
      {"create", path}, {"list", path}, {"monitor", path}, {"set", path, value}, {"get_all"}};
  require(heard_by(service) == expected, "the service hears the requests");
}

/// What the service says of a property is what a reader gets. Answers are sent before the question, so that nobody
/// waits.
void check_read(zyl::property_client_t& client, const service_t& service, const message_t& message) {
  std::string value;
  service.send(zyl::build_frame({"get_response", message.path, message.value}));
  require(client.read(message.path, value, 0) && value == message.value, "a value is read");
  service.send(zyl::build_frame({"error", "no_property", message.path}));
  require(client.read(message.path, value, 0) && value.empty(), "a property that does not exist is empty");
  service.send(zyl::build_frame({message.command, message.path + "/other", message.value}));
  require(!client.read(message.path, value, 0) && value.empty(), "another message is no answer");
  const fuzz::frame_t request{"get", message.path};
  require(heard_by(service) == std::vector<fuzz::frame_t>{request, request, request}, "the service was asked");
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  static service_t service;
  zyl::property_client_t client;
  require(client.connect(), "the client connects");
  service.accept();

  fuzz::input_t input(data, size);
  fuzz::plain_property_receiver_t plain;
  message_t last;
  while (!input.empty()) {
    const std::string_view chunk = input.take_text();
    service.send(chunk);
    plain.append(chunk);
    const auto expected = expected_messages(plain);
    require(received_messages(client) == expected, "the client receives what was sent");
    last = expected.empty() ? last : expected.back();
  }
  check_requests(client, service, last);
  if (plain.left().size() < zyl::property_frame_magic.size()) {
    check_read(client, service, last);
  }

  require(!client.hung_up(), "the service is there");
  service.end_sending();
  const auto expected = expected_messages(plain);
  require(received_messages(client) == expected, "the client receives what it has");
  require(client.hung_up(), "the client sees that the service has gone");
  service.close();
  return 0;
}
