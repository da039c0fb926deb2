#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "control_lib/test/ve_ipc_fixture.h"

using namespace control_lib;
using events_t = recording_observer_t::decoder_events_t;

namespace {

class VeIpcSharing : public ve_ipc_fixture_t {
 protected:
  std::vector<std::string> uris_told() const {
    std::vector<std::string> uris;
    for (const auto& config : engine->decoder_configs()) {
      uris.push_back(config.uri);
    }
    return uris;
  }

  /// A client of a decoder that has decoded earlier; the engine gives its configuration this result.
  int open_decoded_before(int32_t result) {
    connect();
    engine->block().decoder(0).decoded_count().store(5);
    poll();
    engine->set_result(result);
    const int handle = client->open_decoder(visengi, {{"a", 0}}, "", &observer);
    deliver();
    return handle;
  }
};

}  // namespace

TEST_F(VeIpcSharing, ASecondClientOfAUriSharesItsDecoder) {
  connect();
  const int first = client->open_decoder(visengi, {{"a", 0}, {"b", 1}}, "", &observer);
  log.clear();
  const int second = client->open_decoder(visengi, {{"x", 5}, {"a", 5}}, "", &observer);
  EXPECT_NE(first, second);
  EXPECT_EQ(client->decoder_of(second), client->decoder_of(first));
  EXPECT_EQ(uris_told(), std::vector<std::string>{"a"});
  EXPECT_TRUE(log.said("[ve_ipc_t::find_decoder] reusing decoder 0 depayloader index 0"));
  EXPECT_TRUE(log.said("[ve_ipc_t::configure_decoder] decoder:0 visengi:0 already configured for best stream \"a\":0"));
}

TEST_F(VeIpcSharing, ASharedDecoderIsFoundBehindOthersOfItsKind) {
  connect();
  client->open_decoder(dmabuf, {{"a", 0}}, "", &observer);
  client->open_decoder(dmabuf, {{"b", 0}}, "", &observer);
  const int third = client->open_decoder(dmabuf, {{"b", 0}}, "", &observer);
  EXPECT_TRUE(log.said("[ve_ipc_t::find_decoder] reusing decoder 9 depayloader index 1"));
  EXPECT_EQ(third, 2);
  EXPECT_EQ(client->decoder_of(third), 9);
  EXPECT_EQ(client->instance_of(third), 1);
  EXPECT_EQ(uris_told(), (std::vector<std::string>{"a", "b"}));
}

TEST_F(VeIpcSharing, ASecondClientIsToldAtOnceThatFramesFlow) {
  connect();
  const int first = client->open_decoder(visengi, {{"a", 0}}, "", &observer);
  play(first);
  poll();
  observer.take();
  recording_observer_t late;
  const int second = client->open_decoder(visengi, {{"a", 0}}, "", &late);
  deliver();
  EXPECT_TRUE(log.said("[ve_ipc_t::open_decoder] decoder already up, sending decoder_up"));
  EXPECT_EQ(late.take(), (events_t{{second, ve_decoder_up}}));
  EXPECT_TRUE(observer.take().empty());
}

TEST_F(VeIpcSharing, ASecondClientIsToldAtOnceThatTheStreamHasTimedOut) {
  connect();
  client->open_decoder(visengi, {{"a", 0}}, "", &observer);
  poll_after(3001);
  recording_observer_t late;
  const int second = client->open_decoder(visengi, {{"a", 0}}, "", &late);
  deliver();
  EXPECT_TRUE(log.said("[ve_ipc_t::open_decoder] decoder already in timeout state, sending stream_timeout"));
  EXPECT_EQ(late.take(), (events_t{{second, ve_stream_timeout}}));
}

TEST_F(VeIpcSharing, OfAStreamThatPlayedAndTimedOutASecondClientHearsTheTimeoutAlone) {
  connect();
  const int first = client->open_decoder(visengi, {{"a", 0}}, "", &observer);
  play(first);
  poll();
  poll();
  poll_after(3001);
  recording_observer_t late;
  const int second = client->open_decoder(visengi, {{"a", 0}}, "", &late);
  deliver();
  EXPECT_EQ(late.take(), (events_t{{second, ve_stream_timeout}}));
}

TEST_F(VeIpcSharing, AFirstAcceptanceTellsNothingOfEarlierFrames) {
  open_decoded_before(1);
  EXPECT_EQ(observer.take(), events_t{});
}

TEST_F(VeIpcSharing, AnAcceptanceCountedOtherThanOneLeavesItToTheEarlierFrames) {
  const int handle = open_decoded_before(2);
  EXPECT_EQ(observer.take(), (events_t{{handle, ve_decoder_up}}));
}

TEST_F(VeIpcSharing, ARefusalLeavesItToTheEarlierFrames) {
  const int handle = open_decoded_before(-1);
  EXPECT_EQ(observer.take(), (events_t{{handle, ve_decoder_up}}));
}

TEST_F(VeIpcSharing, AnEngineThatTakesNoConfigurationLeavesItToTheEarlierFrames) {
  const int handle = open_decoded_before(0);
  EXPECT_EQ(observer.take(), (events_t{{handle, ve_decoder_up}}));
}

TEST_F(VeIpcSharing, TheFirstFrameOfAnotherStreamIsToldThoughTheDecoderWasUp) {
  connect();
  const int first = client->open_decoder(visengi, {{"a", 0}, {"b", 0}}, "", &observer);
  play(first);
  poll();
  observer.take();
  client->open_decoder(visengi, {{"c", 0}, {"b", 0}}, "", nullptr);
  ASSERT_EQ(uris_told(), (std::vector<std::string>{"a", "b"}));
  play(first);
  poll();
  EXPECT_EQ(observer.take(), (events_t{{first, ve_decoder_up}}));
}

TEST_F(VeIpcSharing, AFirstClientIsNotToldOfADecoderThatHasNotDecodedYet) {
  connect();
  client->open_decoder(visengi, {{"a", 0}}, "", &observer);
  client->open_decoder(visengi, {{"a", 0}}, "", &observer);
  deliver();
  EXPECT_TRUE(observer.take().empty());
}

TEST_F(VeIpcSharing, ADifferentKeyIsRefusedWithTheFirstOneKept) {
  connect();
  client->open_decoder(visengi, {{"a", 0}}, "one", &observer);
  client->open_decoder(visengi, {{"a", 0}}, "two", &observer);
  EXPECT_TRUE(said(spdlog::level::err, "[ve_ipc_t::intersect_uris] handle opened with different key"));
  EXPECT_EQ(engine->decoder_configs().size(), 1U);
}

TEST_F(VeIpcSharing, ClosingOneOfTwoClientsConfiguresWhatTheOtherLikesBest) {
  connect();
  const int first = client->open_decoder(visengi, {{"a", 0}, {"b", 0}}, "", &observer);
  const int second = client->open_decoder(visengi, {{"c", 0}, {"b", 0}}, "", &observer);
  EXPECT_EQ(uris_told(), (std::vector<std::string>{"a", "b"}));
  client->close_decoder(first, false);
  EXPECT_EQ(uris_told(), (std::vector<std::string>{"a", "b", "c"}));
  EXPECT_EQ(client->decoder_of(second), 0);
}
