#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "control_lib/test/ve_ipc_fixture.h"

using namespace control_lib;
using events_t = recording_observer_t::decoder_events_t;

namespace {

class VeIpcDecoders : public ve_ipc_fixture_t {};

}  // namespace

TEST_F(VeIpcDecoders, OpeningConfiguresTheFirstIdleDecoderOfTheKind) {
  connect();
  const int handle = client->open_decoder(dmabuf, {{"videng-pnl8-dmabuf0", 0}}, "", &observer);
  EXPECT_EQ(handle, 0);
  EXPECT_EQ(client->decoder_of(handle), 7);
  EXPECT_EQ(client->instance_of(handle), 0);
  const auto configs = engine->decoder_configs();
  ASSERT_EQ(configs.size(), 1U);
  EXPECT_EQ(configs[0].decoder, 7);
  EXPECT_EQ(configs[0].uri, "videng-pnl8-dmabuf0");
  EXPECT_EQ(configs[0].key, "");
}

TEST_F(VeIpcDecoders, OpeningTellsItsStepsInTheLog) {
  connect();
  client->open_decoder(dmabuf, {{"u", 0}, {"v", 1}}, "", &observer);
  const std::vector<std::string> lines = log.lines();
  ASSERT_EQ(lines.size(), 6U);
  EXPECT_EQ(lines[0], "[ve_ipc_t::open_decoder] dpldr=mediacast_dmabuf uri(s)=\"u\":0, \"v\":1 key size 0");
  EXPECT_EQ(lines[1], "[ve_ipc_t::find_decoder] using idle decoder 7 mediacast_dmabuf:0");
  EXPECT_EQ(lines[2], "[ve_ipc_t::open_decoder] using decoder 7 mediacast_dmabuf:0");
  EXPECT_EQ(lines[3], "[ve_ipc_t::find_free_decoder_handle] adding new decoder handle 0");
  EXPECT_EQ(lines[4], "[ve_ipc_t::open_decoder] using handle 0");
  EXPECT_TRUE(
      said(spdlog::level::debug, "[ve_ipc_t::configure_decoder] decoder:7 mediacast_dmabuf:0 URI=u key=no ~", "ms OK"));
}

TEST_F(VeIpcDecoders, TheSecondOpeningTakesTheNextInstance) {
  connect();
  client->open_decoder(dmabuf, {{"a", 0}}, "", &observer);
  const int second = client->open_decoder(dmabuf, {{"b", 0}}, "", &observer);
  EXPECT_EQ(second, 1);
  EXPECT_EQ(client->decoder_of(second), 9);
  EXPECT_EQ(client->instance_of(second), 1);
}

TEST_F(VeIpcDecoders, MoreOpeningsThanDecodersFail) {
  connect();
  client->open_decoder(dmabuf, {{"a", 0}}, "", &observer);
  client->open_decoder(dmabuf, {{"b", 0}}, "", &observer);
  EXPECT_EQ(client->open_decoder(dmabuf, {{"c", 0}}, "", &observer), -1);
  EXPECT_TRUE(said(spdlog::level::err, "[ve_ipc_t::find_decoder] not enough decoders"));
  EXPECT_TRUE(log.said("[ve_ipc_t::open_decoder] get_decoder -1"));
}

TEST_F(VeIpcDecoders, AKindThatTheEngineDoesNotHaveFails) {
  connect();
  EXPECT_EQ(client->open_decoder(77, {{"a", 0}}, "", &observer), -1);
  EXPECT_TRUE(log.said("[ve_ipc_t::open_decoder] dpldr=unknown uri(s)=\"a\":0 key size 0"));
  EXPECT_TRUE(said(spdlog::level::err, "[ve_ipc_t::find_decoder] not enough decoders"));
}

TEST_F(VeIpcDecoders, OpeningWithoutAnEngineFails) {
  open();
  EXPECT_EQ(client->open_decoder(dmabuf, {{"a", 0}}, "", &observer), -1);
  EXPECT_TRUE(log.said("[ve_ipc_t::open_decoder] dpldr=mediacast_dmabuf uri(s)=\"a\":0 NOT CONNECTED"));
}

TEST_F(VeIpcDecoders, OpeningWithoutUrisFails) {
  connect();
  EXPECT_EQ(client->open_decoder(dmabuf, {}, "", &observer), -1);
  EXPECT_TRUE(log.said("[ve_ipc_t::open_decoder] empty uris.  nothing to do."));
}

TEST_F(VeIpcDecoders, AKeyOfThirtyBytesIsToldInTheLogAndNoOther) {
  connect();
  client->open_decoder(dmabuf, {{"a", 0}}, std::string(29, 'k'), &observer);
  EXPECT_TRUE(said(spdlog::level::debug, "[ve_ipc_t::configure_decoder] decoder:7 mediacast_dmabuf:0 URI=a key=no"));
  client->open_decoder(dmabuf, {{"b", 0}}, std::string(30, 'k'), &observer);
  EXPECT_TRUE(said(spdlog::level::debug, "[ve_ipc_t::configure_decoder] decoder:9 mediacast_dmabuf:1 URI=b key=yes"));
  EXPECT_EQ(engine->decoder_configs()[1].key, std::string(30, 'k'));
}

TEST_F(VeIpcDecoders, ClosingTheOnlyClientClearsTheDecoder) {
  connect();
  const int handle = client->open_decoder(dmabuf, {{"a", 0}}, "key", &observer);
  log.clear();
  client->close_decoder(handle, false);
  const auto configs = engine->decoder_configs();
  ASSERT_EQ(configs.size(), 2U);
  EXPECT_EQ(configs[1].decoder, 7);
  EXPECT_EQ(configs[1].uri, "");
  EXPECT_EQ(configs[1].key, "");
  EXPECT_TRUE(log.said("[ve_ipc_t::close_decoder] 0"));
  EXPECT_TRUE(log.said("[ve_ipc_t::close_decoder] removed ref 0 from decoder 7"));
  EXPECT_EQ(client->decoder_of(handle), -1);
  EXPECT_EQ(client->instance_of(handle), -1);
}

TEST_F(VeIpcDecoders, AClosedHandleIsUsedAgain) {
  connect();
  client->close_decoder(client->open_decoder(dmabuf, {{"a", 0}}, "", &observer), false);
  log.clear();
  EXPECT_EQ(client->open_decoder(dmabuf, {{"b", 0}}, "", &observer), 0);
  EXPECT_TRUE(log.said("[ve_ipc_t::find_free_decoder_handle] using free decoder handle 0"));
}

TEST_F(VeIpcDecoders, ClosingAHandleThatIsNoneDoesNothing) {
  connect();
  client->close_decoder(-1, false);
  client->close_decoder(0, true);
  EXPECT_TRUE(log.lines().empty());
  EXPECT_TRUE(engine->decoder_configs().empty());
}

TEST_F(VeIpcDecoders, ClosingTwiceClearsOnce) {
  connect();
  const int handle = client->open_decoder(dmabuf, {{"a", 0}}, "", &observer);
  client->close_decoder(handle, false);
  client->close_decoder(handle, false);
  EXPECT_EQ(engine->decoder_configs().size(), 2U);
}

TEST_F(VeIpcDecoders, AClientThatClosesBeforeAnEventIsDeliveredHearsNothing) {
  connect();
  const int handle = client->open_decoder(visengi, {{"a", 0}}, "", &observer);
  play(handle);
  client->poll_status();
  client->close_decoder(handle, false);
  deliver();
  EXPECT_TRUE(observer.take().empty());
}

TEST_F(VeIpcDecoders, AnEventOfAnEarlierOpeningIsNotDeliveredToTheNext) {
  connect();
  const int handle = client->open_decoder(visengi, {{"a", 0}}, "", &observer);
  play(handle);
  client->poll_status();
  client->close_decoder(handle, false);
  ASSERT_EQ(client->open_decoder(visengi, {{"b", 0}}, "", &observer), handle);
  observer.take();
  deliver();
  // What comes is the standing of the new opening alone, not the edges of the old one.
  EXPECT_EQ(observer.take(), events_t{});
}

TEST_F(VeIpcDecoders, AFurtherObserverHearsEachEventOnceUntilTheHandleIsClosed) {
  connect();
  const int handle = client->open_decoder(visengi, {{"a", 0}}, "", &observer);
  recording_observer_t further;
  client->add_decoder_observer(handle, &further);
  client->add_decoder_observer(handle, &further);
  client->add_decoder_observer(handle, &observer);
  client->add_decoder_observer(handle, nullptr);
  client->add_decoder_observer(99, &further);
  entry_of(handle).rx_count().add(1);
  poll();
  EXPECT_EQ(further.take(), (events_t{{handle, ve_stream_up}}));
  EXPECT_EQ(observer.take(), (events_t{{handle, ve_stream_up}}));

  client->close_decoder(handle, false);
  ASSERT_EQ(client->open_decoder(visengi, {{"b", 0}}, "", &observer), handle);
  poll();
  EXPECT_TRUE(further.take().empty());
  EXPECT_EQ(observer.take(), (events_t{{handle, ve_stream_down}}));
}

TEST_F(VeIpcDecoders, OpeningWithoutObserverIsLegal) {
  connect();
  const int handle = client->open_decoder(visengi, {{"a", 0}}, "", nullptr);
  EXPECT_EQ(handle, 0);
  play(handle);
  poll();
}

TEST_F(VeIpcDecoders, ARefusalIsLoggedAndTheDecoderStaysClaimed) {
  connect();
  engine->set_result(-5);
  const int handle = client->open_decoder(dmabuf, {{"a", 0}}, "", &observer);
  EXPECT_EQ(handle, 0);
  EXPECT_TRUE(said(spdlog::level::err, "[ve_ipc_t::configure_decoder] decoder:7 mediacast_dmabuf:0 URI=a key=no ~",
                   "ms ERROR"));
}

TEST_F(VeIpcDecoders, AnEngineThatTakesNoConfigurationIsGivenUpAfterTwoSeconds) {
  connect();
  engine->set_result(0);
  const int handle = client->open_decoder(dmabuf, {{"a", 0}}, "", &observer);
  EXPECT_EQ(handle, 0);
  EXPECT_TRUE(said(spdlog::level::err,
                   "[ve_ipc_t::configure_decoder] decoder:7 mediacast_dmabuf:0 URI=a key=no ~2000ms TIMEOUT"));
}

TEST_F(VeIpcDecoders, AnEarlierAcceptanceIsNotTakenForTheNextOne) {
  connect();
  const int handle = client->open_decoder(dmabuf, {{"a", 0}}, "", &observer);
  engine->set_result(0);
  client->close_decoder(handle, false);
  EXPECT_TRUE(said(spdlog::level::err,
                   "[ve_ipc_t::configure_decoder] decoder:7 mediacast_dmabuf:0 URI= key=no ~2000ms TIMEOUT"));
}

TEST_F(VeIpcDecoders, ConfiguringZeroesTheCountersOfOneConfigurationOnly) {
  connect();
  const videng::decoder_entry_t entry = engine->block().decoder(7);
  entry.payload_count().store(1);
  entry.rx_count().store(2);
  entry.decrypt_err_count().store(3);
  entry.frame_count().store(4);
  entry.decoded_count().store(5);
  client->open_decoder(dmabuf, {{"a", 0}}, "", &observer);
  EXPECT_EQ(entry.payload_count().load(), 1U);
  EXPECT_EQ(entry.rx_count().load(), 2U);
  EXPECT_EQ(entry.decrypt_err_count().load(), 0U);
  EXPECT_EQ(entry.frame_count().load(), 0U);
  EXPECT_EQ(entry.config_result().load(), 1);
  EXPECT_EQ(entry.decoded_count().load(), 5U);
}

TEST_F(VeIpcDecoders, QueriesOfAHandleThatIsNoneGiveNone) {
  connect();
  EXPECT_EQ(client->decoder_of(-1), -1);
  EXPECT_EQ(client->decoder_of(0), -1);
  EXPECT_EQ(client->instance_of(5), -1);
  client->set_auto_restart(3, true);
}
