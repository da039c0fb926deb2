#include <gtest/gtest.h>

#include <charconv>
#include <fstream>
#include <string>
#include <vector>

#include "control_lib/test/ve_ipc_fixture.h"

using namespace control_lib;
using events_t = recording_observer_t::decoder_events_t;

namespace {

class VeIpcPoll : public ve_ipc_fixture_t {
 protected:
  /// A configured decoder of a streaming kind.
  int open_stream(bool auto_restart = false) {
    connect();
    const int opened = client->open_decoder(visengi, {{"a", 0}}, "", &observer);
    client->set_auto_restart(opened, auto_restart);
    engine->forget();
    log.clear();
    return opened;
  }

  /// The decoder is cleared without a wait: what is sent next must not take that answer for its own.
  void time_out_and_restart(int restart) {
    poll_after(3001);
    ASSERT_TRUE(engine->hears_decoder_configs(static_cast<std::size_t>(2 * restart - 1)));
    poll_after(2000);
  }

  /// The delay that the one line about a decryption restart tells, -1 if there is none.
  int delay_told() const {
    const std::string begin = "Decoder 0 decrypt error. Restarting stream in ";
    for (const std::string& line : log.lines()) {
      if (line.starts_with(begin)) {
        int delay = -1;
        std::from_chars(line.data() + begin.size(), line.data() + line.size(), delay);
        return delay;
      }
    }
    return -1;
  }
};

}  // namespace

TEST_F(VeIpcPoll, TellsWhenStreamAndDecoderComeAndGo) {
  const int handle = open_stream();
  play(handle);
  poll();
  EXPECT_EQ(observer.take(), (events_t{{handle, ve_stream_up}, {handle, ve_decoder_up}}));
  play(handle);
  poll();
  EXPECT_EQ(observer.take(), events_t{});
  poll();
  EXPECT_EQ(observer.take(), (events_t{{handle, ve_stream_down}, {handle, ve_decoder_down}}));
}

TEST_F(VeIpcPoll, TellsEveryClientOfADecoder) {
  const int first = open_stream();
  recording_observer_t other;
  const int second = client->open_decoder(visengi, {{"a", 0}}, "", &other);
  play(first);
  poll();
  EXPECT_EQ(observer.take(), (events_t{{first, ve_stream_up}, {first, ve_decoder_up}}));
  EXPECT_EQ(other.take(), (events_t{{second, ve_stream_up}, {second, ve_decoder_up}}));
}

TEST_F(VeIpcPoll, EventsAreCalledOutsideTheLockSoThatAClientMayCloseInside) {
  class closing_observer_t : public ve_observer_t {
   public:
    explicit closing_observer_t(ve_ipc_t& own_client) : client(own_client) {}
    void decoder_event(int handle, int /*event*/) override {
      ++calls;
      client.close_decoder(handle, false);
    }
    ve_ipc_t& client;
    int calls = 0;
  };
  connect();
  closing_observer_t closing(*client);
  const int handle = client->open_decoder(visengi, {{"a", 0}}, "", &closing);
  play(handle);
  poll();
  EXPECT_EQ(closing.calls, 1);
  EXPECT_EQ(client->decoder_of(handle), -1);
}

TEST_F(VeIpcPoll, AStreamThatNeverComesTimesOutAt3001Milliseconds) {
  const int handle = open_stream();
  poll_after(3000);
  EXPECT_EQ(observer.take(), events_t{});
  poll_after(1);
  EXPECT_EQ(observer.take(), (events_t{{handle, ve_stream_timeout}, {handle, ve_decoder_timeout}}));
  EXPECT_TRUE(said(spdlog::level::err, "Decoder 0 has timed out (\"a\":0)"));
  poll_after(5000);
  EXPECT_EQ(observer.take(), events_t{});
}

TEST_F(VeIpcPoll, ARefusedConfigurationRunsBothTimeouts) {
  connect();
  engine->set_result(-1);
  const int handle = client->open_decoder(visengi, {{"a", 0}}, "", &observer);
  poll_after(3001);
  EXPECT_EQ(observer.take(), (events_t{{handle, ve_stream_timeout}, {handle, ve_decoder_timeout}}));
}

TEST_F(VeIpcPoll, AConfigurationThatIsNotTakenRunsBothTimeouts) {
  connect();
  engine->set_result(0);
  const int handle = client->open_decoder(visengi, {{"a", 0}}, "", &observer);
  poll_after(3001);
  EXPECT_EQ(observer.take(), (events_t{{handle, ve_stream_timeout}, {handle, ve_decoder_timeout}}));
}

TEST_F(VeIpcPoll, AStreamWithoutFramesTimesOutTheDecoderAlone) {
  const int handle = open_stream();
  entry_of(handle).rx_count().add(1);
  poll_after(2000);
  EXPECT_EQ(observer.take(), (events_t{{handle, ve_stream_up}}));
  entry_of(handle).rx_count().add(1);
  poll_after(1001);
  EXPECT_EQ(observer.take(), (events_t{{handle, ve_decoder_timeout}}));
}

TEST_F(VeIpcPoll, TimeoutsRunFromTheEdgeOfAStreamThatEnds) {
  const int handle = open_stream();
  play(handle);
  poll_after(10'000);
  poll_after(200);
  observer.take();
  poll_after(3000);
  EXPECT_EQ(observer.take(), events_t{});
  poll_after(1);
  EXPECT_EQ(observer.take(), (events_t{{handle, ve_stream_timeout}, {handle, ve_decoder_timeout}}));
}

TEST_F(VeIpcPoll, ASplashDecoderNeverTimesOut) {
  connect();
  client->open_decoder(dmabuf, {{"a", 0}}, "", &observer);
  poll_after(60'000);
  EXPECT_EQ(observer.take(), events_t{});
}

TEST_F(VeIpcPoll, ADecoderThatTimesOutIsClearedAndConfiguredAgainTwoSecondsLater) {
  const int handle = open_stream(true);
  poll_after(3001);
  EXPECT_TRUE(
      said(spdlog::level::err, "Decoder 0 has timed out (\"a\":0).  Decoder config cleared.  Restarting in 2000ms."));
  EXPECT_EQ(observer.take(), (events_t{{handle, ve_stream_timeout}, {handle, ve_decoder_timeout}}));
  ASSERT_TRUE(engine->hears_decoder_configs(1));
  EXPECT_EQ(engine->decoder_configs()[0].decoder, 0);
  EXPECT_EQ(engine->decoder_configs()[0].uri, "");

  poll_after(1999);
  EXPECT_EQ(engine->decoder_configs().size(), 1U);
  poll_after(1);
  ASSERT_EQ(engine->decoder_configs().size(), 2U);
  EXPECT_EQ(engine->decoder_configs()[1].uri, "a");
}

TEST_F(VeIpcPoll, ADecoderIsRestartedByItsPlaceInTheBlockAndItsClientToldByHandle) {
  connect();
  ASSERT_EQ(client->open_decoder(dmabuf, {{"splash", 0}}, "", nullptr), 0);
  const int handle = client->open_decoder(videng::depayloader_mediacast_rtsp, {{"a", 3}}, "", &observer);
  ASSERT_EQ(handle, 1);
  ASSERT_EQ(client->decoder_of(handle), 2);
  ASSERT_EQ(client->instance_of(handle), 0);
  client->set_auto_restart(handle, true);
  engine->forget();

  poll_after(3001);
  EXPECT_EQ(observer.take(), (events_t{{handle, ve_stream_timeout}, {handle, ve_decoder_timeout}}));
  EXPECT_TRUE(
      said(spdlog::level::err, "Decoder 2 has timed out (\"a\":3).  Decoder config cleared.  Restarting in 2000ms."));
  ASSERT_TRUE(engine->hears_decoder_configs(1));
  poll_after(2000);
  const auto configs = engine->decoder_configs();
  ASSERT_EQ(configs.size(), 2U);
  EXPECT_EQ(configs[0].decoder, 2);
  EXPECT_EQ(configs[0].uri, "");
  EXPECT_EQ(configs[1].decoder, 2);
  EXPECT_EQ(configs[1].uri, "a");
}

TEST_F(VeIpcPoll, TheEleventhTimeoutOfADecoderIsReportedButNotRestarted) {
  const int handle = open_stream(true);
  for (int restart = 1; restart <= 10; ++restart) {
    time_out_and_restart(restart);
    EXPECT_EQ(engine->decoder_configs().size(), static_cast<std::size_t>(2 * restart));
  }
  observer.take();
  log.clear();
  poll_after(3001);
  EXPECT_EQ(observer.take(), (events_t{{handle, ve_stream_timeout}, {handle, ve_decoder_timeout}}));
  EXPECT_TRUE(log.said("Decoder 0 has timed out (\"a\":0)"));
  poll_after(10'000);
  EXPECT_EQ(engine->decoder_configs().size(), 20U);
}

TEST_F(VeIpcPoll, FramesAfterATimeoutCancelThePendingRestart) {
  const int handle = open_stream(true);
  poll_after(3001);
  ASSERT_TRUE(engine->hears_decoder_configs(1));
  observer.take();
  play(handle);
  poll_after(200);
  EXPECT_TRUE(said(spdlog::level::err, "Decoder 0 has recovered. Canceling restart."));
  EXPECT_EQ(observer.take(), (events_t{{handle, ve_stream_up}, {handle, ve_decoder_up}}));
  play(handle);
  poll_after(2000);
  EXPECT_EQ(engine->decoder_configs().size(), 1U);
}

TEST_F(VeIpcPoll, ADecoderThatComesUpHasAllItsRestartsAgain) {
  const int handle = open_stream(true);
  for (int restart = 1; restart <= 10; ++restart) {
    time_out_and_restart(restart);
  }
  play(handle);
  poll_after(200);
  poll_after(200);
  engine->forget();
  poll_after(3001);
  ASSERT_TRUE(engine->hears_decoder_configs(1));
  poll_after(2000);
  EXPECT_EQ(engine->decoder_configs().size(), 2U);
}

TEST_F(VeIpcPoll, AClosedDecoderIsNotRestarted) {
  const int handle = open_stream(true);
  poll_after(3001);
  ASSERT_TRUE(engine->hears_decoder_configs(1));
  client->close_decoder(handle, false);
  engine->forget();
  poll_after(2000);
  EXPECT_TRUE(engine->decoder_configs().empty());
}

TEST_F(VeIpcPoll, ADecoderThatWasClearedIsNotRestartedForItsNextClient) {
  client->close_decoder(open_stream(true), false);
  client->open_decoder(visengi, {{"b", 0}}, "", &observer);
  poll_after(3001);
  EXPECT_TRUE(log.said("Decoder 0 has timed out (\"b\":0)"));
}

TEST_F(VeIpcPoll, WithADecodeFailureSimulatedTheDecoderTimesOut) {
  const int handle = open_stream();
  play(handle);
  poll();
  std::ofstream("/tmp/sim_decode_fail");
  play(handle);
  poll_after(200);
  EXPECT_EQ(observer.take(), (events_t{{handle, ve_stream_up}, {handle, ve_decoder_up}, {handle, ve_decoder_down}}));
  play(handle);
  poll_after(3001);
  EXPECT_EQ(observer.take(), (events_t{{handle, ve_decoder_timeout}}));
}

TEST_F(VeIpcPoll, WithAReceiveFailureSimulatedTheStreamTimesOut) {
  const int handle = open_stream();
  play(handle);
  poll();
  std::ofstream("/tmp/sim_rx_fail");
  play(handle);
  poll_after(200);
  observer.take();
  play(handle);
  poll_after(3001);
  EXPECT_EQ(observer.take(), (events_t{{handle, ve_stream_timeout}}));
}

TEST_F(VeIpcPoll, DecryptionErrorsArmOneRestartBetween2050And5000Milliseconds) {
  const int handle = open_stream();
  entry_of(handle).payload_count().store(9);
  entry_of(handle).decrypt_err_count().add(3);
  poll();
  EXPECT_GE(delay_told(), 2050);
  EXPECT_LE(delay_told(), 5000);
  EXPECT_TRUE(said(spdlog::level::trace, "Decoder 0 decrypt error.", "ms. decrypt_err_count=3 payload_count=9"));
  log.clear();
  entry_of(handle).decrypt_err_count().add(1);
  poll_after(200);
  EXPECT_EQ(delay_told(), -1);
}

TEST_F(VeIpcPoll, DecryptionErrorsOfAnIdleDecoderAreNobodysConcern) {
  connect();
  engine->block().decoder(0).decrypt_err_count().add(3);
  poll();
  EXPECT_EQ(delay_told(), -1);
}

TEST_F(VeIpcPoll, ABurstOfDecryptionErrorsThatStaysQuietForTwoSecondsCancelsTheRestart) {
  const int handle = open_stream();
  entry_of(handle).decrypt_err_count().add(3);
  poll();
  log.clear();
  poll_after(2000);
  EXPECT_TRUE(log.lines().empty());
  poll_after(1);
  EXPECT_TRUE(said(spdlog::level::trace,
                   "Decoder 0 decrypt error recovered. Canceling stream restart. decrypt_err_count=3 payload_count=0"));
  poll_after(200);
  EXPECT_EQ(delay_told(), -1);
}

TEST_F(VeIpcPoll, AConfigurationEndsTheWaitOfEarlierDecryptionErrors) {
  const int handle = open_stream();
  entry_of(handle).decrypt_err_count().add(3);
  poll();
  EXPECT_GE(delay_told(), 2050);
  client->close_decoder(handle, false);
  ASSERT_EQ(client->open_decoder(visengi, {{"b", 0}}, "", &observer), handle);
  log.clear();
  poll();
  EXPECT_EQ(delay_told(), -1);
  entry_of(handle).decrypt_err_count().add(1);
  poll();
  EXPECT_GE(delay_told(), 2050);
}

TEST_F(VeIpcPoll, SimulatedDecryptionErrorsArmTheRestartAndNeverRecover) {
  open_stream();
  std::ofstream("/tmp/sim_decrypt_err");
  for (int tick = 0; tick < 14; ++tick) {
    poll_after(200);
  }
  EXPECT_GE(delay_told(), 2050);
  EXPECT_FALSE(said(spdlog::level::trace, "Decoder 0 decrypt error recovered."));
}

TEST_F(VeIpcPoll, DecryptionErrorsThatGoOnReachTheRestart) {
  const int handle = open_stream();
  entry_of(handle).decrypt_err_count().add(1);
  poll();
  now_ms += 777;
  // The one real wait of these tests: the timer of the errors, 5 s at most.
  EXPECT_TRUE(test_support::loop_until(loop.base(), [this] {
    return log.said(
        "Restarting decoder 0 for decryption error recovery. Waited 777ms. decrypt_err_count=1 "
        "payload_count=0");
  }));
  EXPECT_TRUE(log.said("[ve_ipc_t::configure_decoder] decoder:0 visengi:0 already configured for best stream \"a\":0"));
  EXPECT_TRUE(engine->decoder_configs().empty());
}
