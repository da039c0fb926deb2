// Frames of the engine link on a socket that keeps their boundaries: each packet has a length byte in front.
#include <sys/socket.h>

#include "engine_lib/engine_ipc.h"
#include "fuzz/target.h"

namespace {

using fuzz::require;

struct message_t {
  eipc::message_type kind;
  std::string payload;

  bool operator==(const message_t&) const = default;
};

uint32_t word_at(std::string_view bytes, std::size_t at) {
  uint32_t word = 0;
  for (std::size_t i = 4; i-- > 0;) {
    word = word << 8U | static_cast<uint8_t>(bytes[at + i]);
  }
  return word;
}

/// Whether a packet is a frame: the length is right. The checksum does not matter.
bool is_frame(std::string_view packet) { return packet.size() >= 16 && word_at(packet, 8) == packet.size() - 16; }

message_t message_in(std::string_view packet) {
  return {{static_cast<int32_t>(word_at(packet, 0)), static_cast<int32_t>(word_at(packet, 4))},
          std::string(packet.substr(16))};
}

/// A payload as it is.
class plain_message_t final : public eipc::message_base_t {
 public:
  explicit plain_message_t(std::string_view bytes) : payload(bytes) {}

  zyl::datastream_t& serialize(zyl::datastream_t& out, std::vector<lnx::cmsg_t>& /*cmsgs*/) const override {
    out.write(payload.data(), payload.size());
    return out;
  }

 private:
  std::string_view payload;
};

class receiver_t final : public eipc::receiver_t {
 public:
  void received(eipc::socket_t& /*sk*/, const std::string& /*from*/, const eipc::message_type& type,
                zyl::datastream_strio_t& data, const std::vector<lnx::cmsg_t>& cmsgs) override {
    require(cmsgs.empty(), "no descriptor was sent");
    messages.push_back({type, std::string(data.data())});
  }

  std::vector<message_t> messages;
};

struct link_t {
  link_t() : link_t(pair()) {}

  void send(std::string_view packet) const {
    require(::send(engine.descriptor(), packet.data(), packet.size(), 0) == static_cast<ssize_t>(packet.size()),
            "the engine sends");
  }

  eipc::socket_t daemon;
  eipc::socket_t engine;

 private:
  static std::array<int, 2> pair() {
    std::array<int, 2> ends{};
    require(::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0, ends.data()) == 0, "a pair");
    return ends;
  }
  explicit link_t(const std::array<int, 2>& ends) : daemon(ends[0]), engine(ends[1]) {}
};

/// One packet by itself, as `get_message` tells it.
void check_message(link_t& link, std::string_view packet) {
  link.send(packet);
  std::string from;
  message_t message;
  zyl::datastream_strio_t payload;
  std::vector<lnx::cmsg_t> cmsgs;
  const int result = link.daemon.get_message(from, message.kind, payload, cmsgs, 0);
  require(result == (is_frame(packet) ? 1 : 0), "what is a frame is a message");
  if (result != 1) {
    return;
  }
  message.payload = payload.data();
  require(message == message_in(packet), "the message is what the frame says");

  // Back to where it came from, now with its checksum.
  const auto sent = link.daemon.sendto(message.kind, plain_message_t(message.payload), "");
  require(sent == static_cast<ssize_t>(packet.size()), "the frame is as long as it was");
  message_t again;
  require(link.engine.get_message(from, again.kind, payload, cmsgs, 0) == 1, "the engine receives it");
  again.payload = payload.data();
  require(again == message, "a message that is sent and received is the same");
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  link_t link;
  receiver_t receiver;
  std::set<eipc::message_type> kinds;
  std::vector<std::string_view> packets;
  std::vector<message_t> expected;
  // So many fit a socket's queue for certain.
  for (fuzz::input_t input(data, size); !input.empty() && packets.size() < 8;) {
    const std::string_view packet = input.take_text();
    if (packet.empty()) {
      continue;  // on such a socket an empty packet looks like the end
    }
    check_message(link, packet);
    packets.push_back(packet);
  }
  for (const std::string_view packet : packets) {
    link.send(packet);
    // Every other kind has a receiver.
    if (is_frame(packet) && message_in(packet).kind.type % 2 == 0) {
      expected.push_back(message_in(packet));
      kinds.insert(expected.back().kind);
    }
  }
  link.daemon.add_receiver(&receiver, kinds);
  // A packet that is no frame ends a pass; the loop calls again for the rest.
  for (std::size_t pass = 0; pass < packets.size(); ++pass) {
    require(link.daemon.process() == 0, "the link stays up");
  }
  require(receiver.messages == expected, "receivers get the messages of their kinds, in order");
  return 0;
}
