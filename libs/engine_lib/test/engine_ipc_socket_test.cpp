#include "engine_lib/engine_ipc_socket.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "engine_lib/engine_ipc_crc.h"
#include "test_support/log_capture.h"

using namespace std::string_literals;
using eipc::message_type;

namespace {

/// A message whose payload is given as bytes.
class bytes_message_t : public eipc::message_base_t {
 public:
  explicit bytes_message_t(std::string bytes) : payload(std::move(bytes)) {}

  zyl::datastream_t& serialize(zyl::datastream_t& out, std::vector<lnx::cmsg_t>& cmsgs) const override {
    out.write(payload.data(), payload.size());
    if (fd >= 0) {
      cmsgs.push_back(lnx::cmsg_t::rights(fd));
    }
    return out;
  }

  std::string payload;
  int fd = -1;
};

/// Keeps what it receives, and consumes the payload as real receivers do.
class recording_receiver_t : public eipc::receiver_t {
 public:
  void received(eipc::socket_t& /*sk*/, const std::string& from, const message_type& type,
                zyl::datastream_strio_t& data, const std::vector<lnx::cmsg_t>& cmsgs) override {
    senders.push_back(from);
    types.push_back(type);
    payloads.emplace_back(data.data());
    data.read(nullptr, data.data().size());
    for (const lnx::cmsg_t& cmsg : cmsgs) {
      fds.push_back(cmsg.fd());
    }
  }

  std::vector<std::string> senders;
  std::vector<message_type> types;
  std::vector<std::string> payloads;
  std::vector<int> fds;
};

/// What poll(2) tells of a socket without waiting.
int events_of(const eipc::socket_t& socket) {
  pollfd watched{socket.descriptor(), POLLIN | POLLPRI | POLLRDHUP, 0};
  return ::poll(&watched, 1, 0) == 1 ? watched.revents : 0;
}

class EngineIpcSocket : public testing::Test {
 protected:
  void SetUp() override {
    std::array<int, 2> fds{};
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, fds.data()), 0);
    socket = std::make_unique<eipc::socket_t>(fds[0]);
    peer = std::make_unique<eipc::socket_t>(fds[1]);
  }

  void send_raw(const std::string& bytes) {
    ASSERT_EQ(::send(peer->descriptor(), bytes.data(), bytes.size(), 0), static_cast<ssize_t>(bytes.size()));
  }

  std::string receive_raw() {
    std::array<char, 4096> buffer{};
    const ssize_t size = ::recv(peer->descriptor(), buffer.data(), buffer.size(), 0);
    return size < 0 ? "nothing" : std::string(buffer.data(), static_cast<std::size_t>(size));
  }

  /// A frame with any header.
  static std::string frame(uint32_t family, uint32_t type, uint32_t len, uint32_t crc, const std::string& payload) {
    zyl::datastream_strio_t out;
    out << family << type << len << crc;
    return std::string(out.data()) + payload;
  }

  /// A frame as it should be.
  static std::string frame(uint32_t family, uint32_t type, const std::string& payload) {
    return frame(family, type, static_cast<uint32_t>(payload.size()), eipc::crc32(payload), payload);
  }

  int get_message() { return socket->get_message(from, type, data, cmsgs, 0); }

  std::unique_ptr<eipc::socket_t> socket;
  std::unique_ptr<eipc::socket_t> peer;
  recording_receiver_t receiver;
  std::string from;
  message_type type;
  zyl::datastream_strio_t data;
  std::vector<lnx::cmsg_t> cmsgs;
};

}  // namespace

TEST(EngineIpcMessageType, IsOrderedByFamilyThenTypeAsSignedNumbers) {
  EXPECT_LT((message_type{1, 9}), (message_type{2, 0}));
  EXPECT_LT((message_type{1, 1}), (message_type{1, 2}));
  EXPECT_LT((message_type{-1, 0}), (message_type{0, 0}));
  EXPECT_EQ((message_type{4, 4}), (message_type{4, 4}));
}

TEST_F(EngineIpcSocket, SendsAHeaderAndThePayloadAsOnePacket) {
  EXPECT_EQ(socket->sendto({4, 6}, bytes_message_t("123456789"), ""), 25);
  EXPECT_EQ(receive_raw(), "\x04\0\0\0\x06\0\0\0\x09\0\0\0\x26\x39\xf4\xcb"s + "123456789");
}

TEST_F(EngineIpcSocket, AnEmptyPayloadHasLengthAndCrcZero) {
  EXPECT_EQ(socket->sendto({4, 0}, bytes_message_t(""), ""), 16);
  EXPECT_EQ(receive_raw(), "\x04\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"s);
}

TEST_F(EngineIpcSocket, SendingIgnoresTheDestinationOnAConnectedSocket) {
  EXPECT_EQ(socket->sendto({4, 0}, bytes_message_t("a"), "/tmp/nobody-is-here"), 17);
  EXPECT_EQ(receive_raw().size(), 17U);
}

TEST_F(EngineIpcSocket, SendingToAPeerThatIsGoneFailsWithoutASignal) {
  peer->close();
  EXPECT_EQ(socket->sendto({4, 0}, bytes_message_t("a"), ""), -EPIPE);
}

TEST_F(EngineIpcSocket, DescriptorsTravelBesideTheFrame) {
  bytes_message_t message("x");
  message.fd = peer->descriptor();
  ASSERT_EQ(peer->sendto({4, 1}, message, ""), 17);
  ASSERT_EQ(get_message(), 1);
  ASSERT_EQ(cmsgs.size(), 1U);
  ASSERT_TRUE(cmsgs[0].has_fd());
  EXPECT_EQ(::close(cmsgs[0].fd()), 0);
}

TEST_F(EngineIpcSocket, AMessageComesWithItsTypeAndPayload) {
  send_raw(frame(4, 7, "payload"));
  ASSERT_EQ(get_message(), 1);
  EXPECT_EQ(type, (message_type{4, 7}));
  EXPECT_EQ(data.data(), "payload");
  EXPECT_TRUE(cmsgs.empty());
}

TEST_F(EngineIpcSocket, ABareHeaderOfLengthZeroIsAMessage) {
  send_raw(frame(4, 7, ""));
  ASSERT_EQ(get_message(), 1);
  EXPECT_EQ(data.data(), "");
}

TEST_F(EngineIpcSocket, AWrongCrcIsDelivered) {
  send_raw(frame(4, 7, 3, 0xdeadbeef, "abc"));
  ASSERT_EQ(get_message(), 1);
  EXPECT_EQ(data.data(), "abc");
}

TEST_F(EngineIpcSocket, NothingToReadIsNoMessage) { EXPECT_EQ(get_message(), 0); }

TEST_F(EngineIpcSocket, FramesOfEveryLengthBelowAHeaderAreDropped) {
  socket->add_receiver(&receiver, {{0, 0}, {4, 0}});
  const std::string header = frame(4, 0, "");
  for (std::size_t size = 1; size < header.size(); ++size) {
    send_raw(header.substr(0, size));
    EXPECT_EQ(get_message(), 0) << size;
    send_raw(std::string(size, '\0'));
    EXPECT_EQ(socket->process(), 0) << size;
  }
  EXPECT_TRUE(receiver.types.empty());
}

TEST_F(EngineIpcSocket, AFrameWhoseLengthIsNotWhatFollowedIsDropped) {
  socket->add_receiver(&receiver, {{4, 7}});
  for (const uint32_t len : {0U, 2U, 4U, 0xffffffffU}) {
    send_raw(frame(4, 7, len, 0, "abc"));
    EXPECT_EQ(get_message(), 0) << len;
    send_raw(frame(4, 7, len, 0, "abc"));
    EXPECT_EQ(socket->process(), 0) << len;
  }
  EXPECT_TRUE(receiver.types.empty());
}

TEST_F(EngineIpcSocket, SeveralWaitingPacketsAreReadOneByOne) {
  send_raw(frame(4, 1, "one"));
  send_raw(frame(4, 2, "second"));
  ASSERT_EQ(get_message(), 1);
  EXPECT_EQ(data.data(), "one");
  ASSERT_EQ(get_message(), 1);
  EXPECT_EQ(data.data(), "second");
  EXPECT_EQ(get_message(), 0);
}

TEST_F(EngineIpcSocket, AClosedPeerIsAReset) {
  peer->close();
  EXPECT_EQ(get_message(), -ECONNRESET);
  EXPECT_EQ(socket->process(), -ECONNRESET);
}

TEST_F(EngineIpcSocket, APeerThatShutItsSideDownIsAReset) {
  ASSERT_EQ(::shutdown(peer->descriptor(), SHUT_WR), 0);
  EXPECT_EQ(get_message(), -ECONNRESET);
}

TEST_F(EngineIpcSocket, WhatAPeerSentBeforeItClosedStillComes) {
  socket->add_receiver(&receiver, {{4, 1}});
  send_raw(frame(4, 1, "last"));
  peer->close();
  EXPECT_EQ(socket->process(), -ECONNRESET);
  EXPECT_EQ(receiver.payloads, std::vector{"last"s});
}

TEST_F(EngineIpcSocket, WaitsForAMessageAsLongAsItIsTold) {
  EXPECT_EQ(socket->get_message(from, type, data, cmsgs, 1), 0);
  std::thread sender([this] { send_raw(frame(4, 7, "late")); });
  EXPECT_EQ(socket->get_message(from, type, data, cmsgs, 60'000), 1);
  EXPECT_EQ(data.data(), "late");
  sender.join();
}

TEST_F(EngineIpcSocket, AnEmptyPacketOfALivingPeerIsNoMessage) {
  send_raw("");
  EXPECT_EQ(get_message(), 0);
}

TEST_F(EngineIpcSocket, AMessageWithoutReceiverIsConsumedAndTheNextOneDelivered) {
  socket->add_receiver(&receiver, {{4, 2}});
  send_raw(frame(4, 1, "nobody wants this"));
  send_raw(frame(4, 2, "wanted"));
  EXPECT_EQ(socket->process(), 0);
  EXPECT_EQ(receiver.payloads, std::vector{"wanted"s});
  EXPECT_EQ(receiver.types, (std::vector{message_type{4, 2}}));
}

TEST_F(EngineIpcSocket, AFrameOfAWrongLengthEndsTheRoundAndTheRestComesWithTheNext) {
  socket->add_receiver(&receiver, {{4, 2}});
  send_raw(frame(4, 2, 99, 0, "bad"));
  send_raw(frame(4, 2, "good"));
  EXPECT_EQ(socket->process(), 0);
  EXPECT_TRUE(receiver.payloads.empty());
  EXPECT_EQ(socket->process(), 0);
  EXPECT_EQ(receiver.payloads, std::vector{"good"s});
}

TEST_F(EngineIpcSocket, TwoReceiversOfOneTypeEachGetTheWholePayload) {
  recording_receiver_t second;
  socket->add_receiver(&receiver, {{4, 1}, {4, 2}});
  socket->add_receiver(&second, {{4, 1}});
  send_raw(frame(4, 1, "payload"));
  EXPECT_EQ(socket->process(), 0);
  EXPECT_EQ(receiver.payloads, std::vector{"payload"s});
  EXPECT_EQ(second.payloads, std::vector{"payload"s});
}

TEST_F(EngineIpcSocket, ARemovedReceiverHearsNothingMoreOfAnyType) {
  socket->add_receiver(&receiver, {{4, 1}, {4, 2}});
  socket->remove_receiver(&receiver);
  send_raw(frame(4, 1, "a"));
  send_raw(frame(4, 2, "b"));
  EXPECT_EQ(socket->process(), 0);
  EXPECT_TRUE(receiver.payloads.empty());
}

TEST_F(EngineIpcSocket, VerboseTellsTheSizesOfEveryFrame) {
  const test_support::log_capture_t log("eng_engine_ipc");
  socket->verbose = true;
  EXPECT_EQ(socket->sendto({4, 6}, bytes_message_t("x"), ""), 17);
  send_raw(frame(4, 7, "payload"));
  EXPECT_EQ(get_message(), 1);
  const std::vector<std::string> expected{
      "socket_t::sendto() size of msg: 1",           "                size of common: 16",
      "socket_t::process pending size on socket 23", "socket_t::process read chars 23",
      "        common.len 7   w.data().size() 7",
  };
  EXPECT_EQ(log.lines(), expected);
}

TEST_F(EngineIpcSocket, WithoutVerboseNothingIsTold) {
  const test_support::log_capture_t log("eng_engine_ipc", spdlog::level::trace);
  EXPECT_EQ(socket->sendto({4, 6}, bytes_message_t("x"), ""), 17);
  send_raw(frame(4, 7, 99, 0, "dropped"));
  EXPECT_EQ(get_message(), 0);
  EXPECT_TRUE(log.lines().empty());
}

TEST(EngineIpcUnreadableSocket, OneThatWasNeverConnectedIsAReset) {
  eipc::socket_t socket;
  ASSERT_EQ(socket.create(SOCK_STREAM), 0);
  ASSERT_EQ(events_of(socket), POLLHUP);
  EXPECT_EQ(socket.process(), -ECONNRESET);
}

TEST(EngineIpcUnreadableSocket, OneThatIsInErrorIsAnInputOutputError) {
  std::array<int, 2> fds{};
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_DGRAM, 0, fds.data()), 0);
  eipc::socket_t socket(fds[0]);
  const eipc::socket_t peer(fds[1]);
  ASSERT_EQ(socket.sendto({4, 1}, bytes_message_t("never read"), ""), 26);
  const sockaddr nobody{AF_UNSPEC, {}};  // leaves the pair, which is an error to the sender of what it had not read
  ASSERT_EQ(::connect(peer.descriptor(), &nobody, sizeof nobody), 0);
  ASSERT_EQ(events_of(socket), POLLERR);
  EXPECT_EQ(socket.process(), -EIO);
}

TEST(EngineIpcDatagramSocket, ADatagramTellsItsSendersPath) {
  eipc::socket_t receiver_socket;
  ASSERT_EQ(receiver_socket.create(SOCK_DGRAM), 0);
  ASSERT_EQ(receiver_socket.bind("/tmp/engine_ipc.receiver"), 0);
  eipc::socket_t sender;
  ASSERT_EQ(sender.create(SOCK_DGRAM), 0);
  ASSERT_EQ(sender.bind("/tmp/engine_ipc.sender"), 0);
  recording_receiver_t receiver;
  receiver_socket.add_receiver(&receiver, {{1, 1}});

  EXPECT_EQ(sender.sendto({1, 1}, bytes_message_t("hello"), "/tmp/engine_ipc.receiver"), 21);
  EXPECT_EQ(receiver_socket.process(), 0);
  EXPECT_EQ(receiver.senders, std::vector{"/tmp/engine_ipc.sender"s});
}
