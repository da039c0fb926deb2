#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "control_lib/test/ve_ipc_fixture.h"

using namespace control_lib;
using namespace std::string_literals;
using test_support::loop_until;

namespace {

class VeIpcConnection : public ve_ipc_fixture_t {
 protected:
  bool loop_until_said(const std::string& line) {
    return loop_until(loop.base(), [this, line] { return log.said(line); });
  }

  /// A descriptor, open for `access` (O_RDONLY, O_RDWR), of a file as the engine hands out.
  static int block_file(std::size_t size, int access) {
    const char* const path = "/tmp/status-block";
    std::ofstream(path).close();
    std::filesystem::resize_file(path, size);
    return ::open(path, access | O_CLOEXEC);
  }

  /// The engine's answer with that descriptor, which is the client's from then on.
  void hand_over(int fd) {
    eipc::socket_t sk;
    zyl::datastream_strio_t data;
    client->received(sk, "", eipc::gen::fd_resp_t::kind, data, {lnx::cmsg_t::rights(fd)});
  }

  static bool is_open(int fd) { return fcntl(fd, F_GETFD) >= 0; }
};

const std::filesystem::path engine_path = "/var/tarn-engine-ipc/0/video-sp";
const std::string open_failed = "video_engine ipc open failed";
const std::string bad_fd = "ve_ipc_t::received bad mmap fd or fstat";

}  // namespace

TEST_F(VeIpcConnection, IsNeitherConnectedNorReadyBeforeOpen) {
  EXPECT_FALSE(client->is_connected());
  EXPECT_FALSE(client->ready());
  EXPECT_EQ(client->status_block(), nullptr);
}

TEST_F(VeIpcConnection, IsUpOnceTheEngineHasHandedItsBlockOut) {
  start_engine();
  open();
  EXPECT_TRUE(client->is_connected());
  EXPECT_FALSE(client->ready());
  ASSERT_TRUE(loop_until(loop.base(), [this] { return client->ready(); }));
  deliver();
  EXPECT_EQ(observer.ipc_events, std::vector{ve_ipc_up + 0});
}

TEST_F(VeIpcConnection, LogsTheNamesOfTheOutputsInTheOrderOfTheBlocksUse) {
  start_engine();
  open();
  ASSERT_TRUE(loop_until_said("video_engine connected"));
  const std::vector<std::string> expected{
      "m_videng_status->raw_outs[0]=\"zvid-raw-frame_inject_in_1\"",
      "m_videng_status->raw_outs[1]=\"zvid-raw-frame_inject_in_0\"",
      "m_videng_status->uvcs[0]=\"uvc-a\"",
      "m_videng_status->uvcs[1]=\"\"",
      "m_videng_status->mc_hdmi_outs[0]=\"\"",
      "m_videng_status->mc_hdmi_outs[1]=\"\"",
      "m_videng_status->mc_hdmi_outs[2]=\"\"",
      "m_videng_status->mc_rtsp_outs[0]=\"\"",
      "m_videng_status->mc_rtsp_outs[1]=\"\"",
      "m_videng_status->mc_rtsp_outs[2]=\"\"",
      "m_videng_status->mc_rtsp_outs[3]=\"\"",
      "video_engine connected",
  };
  EXPECT_EQ(log.lines(), expected);
}

TEST_F(VeIpcConnection, WithoutAnEngineSaysSoAndTriesAgainWithEachPoll) {
  open();
  EXPECT_FALSE(client->is_connected());
  EXPECT_TRUE(said(spdlog::level::err, open_failed));
  log.clear();
  poll();
  EXPECT_TRUE(said(spdlog::level::err, open_failed));
  start_engine();
  poll();
  ASSERT_TRUE(loop_until(loop.base(), [this] { return client->ready(); }));
}

TEST_F(VeIpcConnection, AnEngineThatTakesNoConnectionsIsAFailedOpenAndTriedAgain) {
  std::filesystem::create_directories(engine_path.parent_path());
  lnx::unix_socket_t listener;
  lnx::unix_socket_t waiting;
  lnx::unix_socket_t refused;
  ASSERT_EQ(listener.create(SOCK_SEQPACKET), 0);
  ASSERT_EQ(listener.bind(engine_path), 0);
  ASSERT_EQ(listener.listen(0), 0);
  ASSERT_EQ(waiting.create(SOCK_SEQPACKET), 0);
  ASSERT_EQ(waiting.connect(engine_path), 0);
  ASSERT_EQ(refused.create(SOCK_SEQPACKET), 0);
  ASSERT_EQ(refused.set_blocking(false), 0);
  ASSERT_EQ(refused.connect(engine_path), -EAGAIN);

  open();
  EXPECT_TRUE(said(spdlog::level::err, open_failed));
  EXPECT_FALSE(client->is_connected());
  lnx::unix_socket_t accepted;
  ASSERT_EQ(listener.accept(accepted, nullptr), 0);
  poll();
  EXPECT_TRUE(client->is_connected());
  std::filesystem::remove(engine_path);
}

TEST_F(VeIpcConnection, AnEngineThatReadsNoMoreIsATimeoutOfTheConfiguration) {
  connect();
  engine->stop_reading();
  constexpr int more_than_fit = 3000;
  for (int i = 0; i < more_than_fit; ++i) {
    ASSERT_TRUE(client->configure_raw_out(0, 1, 1920, 1080, false, true));
  }
  EXPECT_FALSE(client->configure_raw_out(0, 1, 1920, 1080, true, true));
  EXPECT_TRUE(said(spdlog::level::err,
                   "[ve_ipc_t::configure_raw_out] raw_out:1 decoder:1 width:1920 height:1080 ~2000ms TIMEOUT"));
  EXPECT_TRUE(client->is_connected());
}

TEST_F(VeIpcConnection, ItsTimerFindsAnEngineThatHasGoneAwayAgain) {
  client = std::make_unique<ve_ipc_t>(loop.base());
  connect();
  engine->disconnect();
  EXPECT_TRUE(loop_until(loop.base(), [this] { return engine->connections() == 2 && client->ready(); }));
}

TEST_F(VeIpcConnection, ItsTimerFindsAnEngineThatStartsLater) {
  client = std::make_unique<ve_ipc_t>(loop.base());
  open();
  start_engine();
  EXPECT_TRUE(loop_until(loop.base(), [this] { return client->ready(); }));
}

TEST_F(VeIpcConnection, AnEngineThatDoesNotAnswerLeavesItConnectedWithoutABlock) {
  start_engine({.answers = false});
  open();
  poll();
  EXPECT_TRUE(client->is_connected());
  EXPECT_FALSE(client->ready());
  EXPECT_TRUE(observer.ipc_events.empty());
}

TEST_F(VeIpcConnection, AnAnswerWithoutDescriptorIsRefused) {
  start_engine({.with_descriptor = false});
  open();
  ASSERT_TRUE(loop_until_said(bad_fd));
  EXPECT_TRUE(said(spdlog::level::err, bad_fd));
  EXPECT_FALSE(client->ready());
}

TEST_F(VeIpcConnection, AFileThatIsSmallerThanTheBlockIsRefused) {
  start_engine({.block_size = videng::status_block_t::size - 1});
  open();
  ASSERT_TRUE(loop_until_said(bad_fd));
  EXPECT_FALSE(client->ready());
  poll();
}

TEST_F(VeIpcConnection, ADescriptorThatIsTooSmallIsClosed) {
  const int fd = block_file(videng::status_block_t::size - 1, O_RDWR);
  hand_over(fd);
  EXPECT_TRUE(said(spdlog::level::err, bad_fd));
  EXPECT_FALSE(is_open(fd));
}

TEST_F(VeIpcConnection, ADescriptorThatCannotBeMappedIsClosed) {
  const int fd = block_file(videng::status_block_t::size, O_RDONLY);
  hand_over(fd);
  EXPECT_TRUE(said(spdlog::level::err, "ve_ipc_t::received videng::status_get_resp mmap failed"));
  EXPECT_FALSE(client->ready());
  EXPECT_FALSE(is_open(fd));
}

TEST_F(VeIpcConnection, ADescriptorInUseStaysOpen) {
  const int fd = block_file(videng::status_block_t::size, O_RDWR);
  hand_over(fd);
  EXPECT_TRUE(said(spdlog::level::info, "video_engine connected"));
  EXPECT_TRUE(is_open(fd));
  close(fd);
}

TEST_F(VeIpcConnection, AFileThatIsLargerThanTheBlockIsTaken) {
  start_engine({.block_size = videng::status_block_t::size + 5000});
  open();
  EXPECT_TRUE(loop_until(loop.base(), [this] { return client->ready(); }));
}

TEST_F(VeIpcConnection, ASecondBlockReplacesTheFirst) {
  connect();
  engine->send_block();
  ASSERT_TRUE(loop_until_said("video_engine connected"));
  deliver();
  EXPECT_TRUE(client->ready());
  EXPECT_EQ(observer.ipc_events, (std::vector{ve_ipc_up + 0, ve_ipc_up + 0}));
}

TEST_F(VeIpcConnection, AMessageOfAnotherFamilyIsRefused) {
  eipc::socket_t sk;
  zyl::datastream_strio_t data;
  client->received(sk, "", {5, 1}, data, {});
  EXPECT_TRUE(said(spdlog::level::err, "ve_ipc_t::received wrong family type"));
  EXPECT_FALSE(client->ready());
}

TEST_F(VeIpcConnection, AMessageOfAnotherTypeIsIgnored) {
  connect();
  eipc::socket_t sk;
  zyl::datastream_strio_t data;
  client->received(sk, "", {4, 77}, data, {});
  EXPECT_TRUE(log.lines().empty());
  EXPECT_TRUE(client->ready());
}

TEST_F(VeIpcConnection, GarbageFromTheEngineChangesNothing) {
  connect();
  engine->send("x");
  engine->send(std::string(16, '\xff'));
  engine->send("\x04\0\0\0\x01\0\0\0\x09\0\0\0\0\0\0\0"s);
  engine->send_block();
  ASSERT_TRUE(loop_until_said("video_engine connected"));
  EXPECT_TRUE(client->ready());
}

TEST_F(VeIpcConnection, AnEngineThatGoesAwayIsToldAndLookedForAgain) {
  connect();
  engine->disconnect();
  ASSERT_TRUE(loop_until(loop.base(), [this] { return !client->is_connected(); }));
  deliver();
  EXPECT_FALSE(client->ready());
  EXPECT_EQ(client->status_block(), nullptr);
  EXPECT_TRUE(said(spdlog::level::warn, "video_engine disconnected"));
  EXPECT_EQ(observer.ipc_events, (std::vector{ve_ipc_up + 0, ve_ipc_down + 0}));

  poll();
  ASSERT_TRUE(loop_until(loop.base(), [this] { return client->ready(); }));
  deliver();
  EXPECT_EQ(observer.ipc_events, (std::vector{ve_ipc_up + 0, ve_ipc_down + 0, ve_ipc_up + 0}));
  EXPECT_EQ(engine->connections(), 2);
}

TEST_F(VeIpcConnection, ADisconnectFreesHandlesAndForgetsOutputs) {
  connect();
  const int handle = client->open_decoder(dmabuf, {{"a", 0}}, "", &observer);
  ASSERT_EQ(handle, 0);
  ASSERT_TRUE(client->configure_raw_out(0, 0, 1920, 1080, true, false));
  engine->disconnect();
  ASSERT_TRUE(loop_until(loop.base(), [this] { return !client->is_connected(); }));
  EXPECT_EQ(client->decoder_of(handle), -1);
  EXPECT_EQ(client->instance_of(handle), -1);
  client->close_decoder(handle, false);

  poll();
  ASSERT_TRUE(loop_until(loop.base(), [this] { return client->ready(); }));
  int decoder = 0;
  int width = 0;
  int height = 0;
  client->raw_out_configuration(0, &decoder, &width, &height);
  EXPECT_EQ((std::vector{decoder, width, height}), (std::vector{-1, -1, -1}));
  EXPECT_EQ(client->open_decoder(dmabuf, {{"a", 0}}, "", &observer), 0);
  EXPECT_EQ(engine->decoder_configs().size(), 2U);
}

TEST_F(VeIpcConnection, CloseAllDisconnectsWithoutTellingAndPollsNoMore) {
  client = std::make_unique<ve_ipc_t>(loop.base());
  connect();
  client->close_all();
  EXPECT_FALSE(client->is_connected());
  bool later = false;
  zyl::sigc_timer_t wait(loop.base(), 500, true);
  wait.expired.connect([&later] { later = true; });
  wait.arm();
  ASSERT_TRUE(loop_until(loop.base(), [&later] { return later; }));
  EXPECT_FALSE(client->is_connected());
  EXPECT_EQ(engine->connections(), 1);
  EXPECT_EQ(observer.ipc_events, std::vector{ve_ipc_up + 0});
}

TEST_F(VeIpcConnection, OpeningAgainConnectsAnew) {
  connect();
  client->open(false);
  ASSERT_TRUE(loop_until(loop.base(), [this] { return client->ready(); }));
  EXPECT_EQ(engine->connections(), 2);
}

TEST_F(VeIpcConnection, AnEventThatIsPostedWhenTheClientEndsIsNotDelivered) {
  client->add_ipc_observer(&observer);
  client->add_ipc_observer(nullptr);
  client->open(true);
  client.reset();
  deliver();
  EXPECT_TRUE(observer.ipc_events.empty());
}
