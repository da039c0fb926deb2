#include "lnx/src/unix_socket.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spdlog/spdlog.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>

using lnx::cmsg_t;
using lnx::unix_socket_t;

namespace {

const std::string listener_path = "/tmp/unix_socket_test.listener";
const std::string client_path = "/tmp/unix_socket_test.client";

iovec buffer_of(const std::string& text) { return {const_cast<char*>(text.data()), text.size()}; }

ssize_t send_text(unix_socket_t& socket, const std::string& text, const std::string* dest = nullptr,
                  std::span<const cmsg_t> cmsgs = {}) {
  const std::array buffers{buffer_of(text)};
  return socket.sendmsg(buffers, dest, cmsgs);
}

/// A pair of connected sockets of a type.
class pair_t {
 public:
  explicit pair_t(int type) : pair_t(make(type)) {}

 private:
  static std::array<int, 2> make(int type) {
    std::array<int, 2> fds{-1, -1};
    EXPECT_EQ(socketpair(AF_UNIX, type, 0, fds.data()), 0);
    return fds;
  }
  explicit pair_t(std::array<int, 2> fds) : a(fds[0]), b(fds[1]) {}

 public:
  unix_socket_t a;
  unix_socket_t b;
};

}  // namespace

TEST(UnixSocket, IsClosedAndOfUnknownTypeBeforeCreate) {
  unix_socket_t socket;
  EXPECT_FALSE(socket.is_open());
  EXPECT_EQ(socket.descriptor(), -1);
  EXPECT_EQ(socket.socket_type(), -1);
  EXPECT_EQ(socket.close(), -EBADF);
}

TEST(UnixSocket, CreateOpensOnceAndThenIsBusy) {
  unix_socket_t socket;
  EXPECT_EQ(socket.create(SOCK_SEQPACKET), 0);
  EXPECT_EQ(socket.socket_type(), SOCK_SEQPACKET);
  EXPECT_EQ(socket.create(SOCK_DGRAM), -EBUSY);
  EXPECT_EQ(socket.close(), 0);
  EXPECT_FALSE(socket.is_open());
  EXPECT_EQ(socket.create(SOCK_DGRAM), 0);
}

TEST(UnixSocket, AFailedCreateLeavesItClosed) {
  unix_socket_t socket;
  EXPECT_LT(socket.create(12345), 0);
  EXPECT_FALSE(socket.is_open());
  EXPECT_EQ(socket.socket_type(), -1);
}

TEST(UnixSocket, TakesItsTypeFromAnOpenDescriptor) {
  const pair_t pair(SOCK_SEQPACKET);
  EXPECT_EQ(pair.a.socket_type(), SOCK_SEQPACKET);
}

TEST(UnixSocket, ConnectsToAListenerWhichLearnsTheClientsPath) {
  unix_socket_t listener;
  ASSERT_EQ(listener.create(SOCK_SEQPACKET), 0);
  ASSERT_EQ(listener.bind(listener_path), 0);
  ASSERT_EQ(listener.listen(1), 0);
  unix_socket_t client;
  ASSERT_EQ(client.create(SOCK_SEQPACKET), 0);
  ASSERT_EQ(client.bind(client_path), 0);
  ASSERT_EQ(client.connect(listener_path), 0);

  unix_socket_t peer;
  std::string name;
  EXPECT_EQ(listener.accept(peer, &name), 0);
  EXPECT_EQ(name, client_path);
  EXPECT_EQ(peer.socket_type(), SOCK_SEQPACKET);
  EXPECT_EQ(send_text(client, "hello"), 5);
  EXPECT_EQ(peer.pending_size(), 5U);
}

TEST(UnixSocket, AnUnboundClientHasAnEmptyName) {
  unix_socket_t listener;
  ASSERT_EQ(listener.create(SOCK_SEQPACKET), 0);
  ASSERT_EQ(listener.bind(listener_path), 0);
  ASSERT_EQ(listener.listen(1), 0);
  unix_socket_t client;
  ASSERT_EQ(client.create(SOCK_SEQPACKET), 0);
  ASSERT_EQ(client.connect(listener_path), 0);
  unix_socket_t peer;
  std::string name = "old";
  EXPECT_EQ(listener.accept(peer, &name), 0);
  EXPECT_EQ(name, "");
}

TEST(UnixSocket, ConnectFailsWithTheErrorNumberOfTheCall) {
  unix_socket_t client;
  ASSERT_EQ(client.create(SOCK_SEQPACKET), 0);
  EXPECT_EQ(client.connect("/tmp/nobody-is-here"), -ENOENT);
}

TEST(UnixSocket, AcceptsNoConnectionIntoASocketThatIsOpen) {
  unix_socket_t listener;
  ASSERT_EQ(listener.create(SOCK_SEQPACKET), 0);
  ASSERT_EQ(listener.bind(listener_path), 0);
  ASSERT_EQ(listener.set_blocking(false), 0);
  ASSERT_EQ(listener.listen(1), 0);
  unix_socket_t client;
  ASSERT_EQ(client.create(SOCK_SEQPACKET), 0);
  ASSERT_EQ(client.connect(listener_path), 0);

  unix_socket_t peer;
  ASSERT_EQ(peer.create(SOCK_SEQPACKET), 0);
  const int descriptor = peer.descriptor();
  EXPECT_EQ(listener.accept(peer, nullptr), -EBUSY);
  EXPECT_EQ(peer.descriptor(), descriptor);
  ASSERT_EQ(peer.close(), 0);
  EXPECT_EQ(listener.accept(peer, nullptr), 0);
}

TEST(UnixSocket, RefusesAPathThatDoesNotFitAnAddress) {
  unix_socket_t socket;
  ASSERT_EQ(socket.create(SOCK_DGRAM), 0);
  const std::string fits = "/tmp/" + std::string(102, 'x');
  EXPECT_EQ(socket.bind(fits + "y"), -ENAMETOOLONG);
  EXPECT_EQ(socket.connect(fits + "y"), -ENAMETOOLONG);
  EXPECT_EQ(socket.bind(fits), 0);

  const std::string too_long = fits + "y";
  EXPECT_EQ(send_text(socket, "x", &too_long), -ENAMETOOLONG);
  EXPECT_EQ(socket.pending_size(), 0U);  // not sent to the start of the path either
  EXPECT_EQ(send_text(socket, "x", &fits), 1);
}

TEST(UnixSocket, ADatagramGoesToItsDestinationAndTellsItsSender) {
  unix_socket_t receiver;
  ASSERT_EQ(receiver.create(SOCK_DGRAM), 0);
  ASSERT_EQ(receiver.bind(listener_path), 0);
  unix_socket_t sender;
  ASSERT_EQ(sender.create(SOCK_DGRAM), 0);
  ASSERT_EQ(sender.bind(client_path), 0);
  EXPECT_EQ(send_text(sender, "hello", &listener_path), 5);

  std::array<char, 16> buffer{};
  std::string from;
  EXPECT_EQ(receiver.recvmsg(buffer.data(), buffer.size(), &from, nullptr), 5);
  EXPECT_EQ(from, client_path);
}

TEST(UnixSocket, ASequencedPacketSocketIgnoresTheDestination) {
  pair_t pair(SOCK_SEQPACKET);
  const std::string nowhere = "/tmp/nobody-is-here";
  EXPECT_EQ(send_text(pair.a, "hello", &nowhere), 5);
  EXPECT_EQ(pair.b.pending_size(), 5U);
}

TEST(UnixSocket, PassesADescriptorToThePeer) {
  pair_t pair(SOCK_SEQPACKET);
  const int passed = open("/dev/null", O_RDONLY);
  ASSERT_GT(passed, 0);
  const std::array records{cmsg_t::rights(passed)};
  EXPECT_EQ(send_text(pair.a, "x", nullptr, records), 1);

  char byte = 0;
  std::vector<cmsg_t> received{cmsg_t::rights(0)};
  ASSERT_EQ(pair.b.recvmsg(&byte, 1, nullptr, &received), 1);
  ASSERT_EQ(received.size(), 1U);
  ASSERT_TRUE(received[0].has_fd());
  struct stat sent {};
  struct stat got {};
  EXPECT_EQ(fstat(passed, &sent), 0);
  EXPECT_EQ(fstat(received[0].fd(), &got), 0);
  EXPECT_EQ(sent.st_ino, got.st_ino);
  EXPECT_NE(passed, received[0].fd());
  close(received[0].fd());
  close(passed);
}

TEST(UnixSocket, PassesSeveralRecordsInOneMessage) {
  pair_t pair(SOCK_SEQPACKET);
  const std::array records{cmsg_t::rights(pair.a.descriptor()), cmsg_t::rights(pair.b.descriptor())};
  EXPECT_EQ(send_text(pair.a, "x", nullptr, records), 1);
  char byte = 0;
  std::vector<cmsg_t> received;
  ASSERT_EQ(pair.b.recvmsg(&byte, 1, nullptr, &received), 1);
  std::size_t descriptors = 0;
  for (const cmsg_t& record : received) {
    const std::size_t count = record.data().size() / sizeof(int32_t);
    descriptors += count;
    for (std::size_t i = 0; i < count; ++i) {
      close(reinterpret_cast<const int32_t*>(record.data().data())[i]);
    }
  }
  EXPECT_EQ(descriptors, 2U);
}

TEST(UnixSocket, ReceivingWithoutRecordsEmptiesTheOldList) {
  pair_t pair(SOCK_SEQPACKET);
  EXPECT_EQ(send_text(pair.a, "x"), 1);
  char byte = 0;
  std::vector<cmsg_t> received{cmsg_t::rights(0)};
  ASSERT_EQ(pair.b.recvmsg(&byte, 1, nullptr, &received), 1);
  EXPECT_TRUE(received.empty());
}

TEST(UnixSocket, AReceiveThatFailsLeavesNothingOfTheMessageBefore) {
  unix_socket_t socket;
  char byte = 0;
  std::string from = "old";
  std::vector<cmsg_t> received{cmsg_t::rights(0)};
  EXPECT_EQ(socket.recvmsg(&byte, 1, &from, &received), -EBADF);
  EXPECT_EQ(from, "");
  EXPECT_TRUE(received.empty());
}

TEST(UnixSocket, WithoutBlockingAReceiveOfNothingFailsAtOnce) {
  pair_t pair(SOCK_SEQPACKET);
  EXPECT_EQ(pair.a.set_blocking(false), 0);
  char byte = 0;
  EXPECT_EQ(pair.a.recvmsg(&byte, 1, nullptr, nullptr), -EAGAIN);
  EXPECT_EQ(pair.a.set_blocking(true), 0);
  EXPECT_EQ(fcntl(pair.a.descriptor(), F_GETFL) & O_NONBLOCK, 0);
}

TEST(UnixSocket, AClosedSocketHasNothingPendingAndRefusesEverything) {
  unix_socket_t socket;
  char byte = 0;
  EXPECT_EQ(socket.pending_size(), 0U);
  EXPECT_EQ(send_text(socket, "x"), -EBADF);
  EXPECT_EQ(socket.recvmsg(&byte, 1, nullptr, nullptr), -EBADF);
  EXPECT_EQ(socket.set_blocking(false), -EBADF);
  EXPECT_EQ(socket.listen(1), -EBADF);
}

TEST(UnixSocket, ClosesItsDescriptorAtTheEnd) {
  int fd = -1;
  {
    const pair_t pair(SOCK_STREAM);
    fd = pair.a.descriptor();
  }
  EXPECT_EQ(fcntl(fd, F_GETFD), -1);
}

TEST(UnixSocket, TheLevelFileKnowsItsLogger) { EXPECT_NE(spdlog::get("lin_ipc"), nullptr); }
