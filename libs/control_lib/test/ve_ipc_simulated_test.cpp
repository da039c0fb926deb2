#include <gtest/gtest.h>

#include "control_lib/test/ve_ipc_fixture.h"

using namespace control_lib;

namespace {

class VeIpcSimulated : public ve_ipc_fixture_t {};

}  // namespace

TEST_F(VeIpcSimulated, IsUpAtOnceWithThreeDecoders) {
  client->add_ipc_observer(&observer);
  client->open(true);
  deliver();
  EXPECT_TRUE(client->is_connected());
  EXPECT_TRUE(client->ready());
  EXPECT_EQ(observer.ipc_events, std::vector{ve_ipc_up + 0});
  ASSERT_NE(client->status_block(), nullptr);
  const int first = client->open_decoder(visengi, {{"a", 0}}, "", &observer);
  const int second = client->open_decoder(visengi, {{"b", 0}}, "", &observer);
  const int third = client->open_decoder(videng::depayloader_mediacast_rtsp, {{"c", 0}}, "", &observer);
  EXPECT_EQ(client->decoder_of(first), 0);
  EXPECT_EQ(client->decoder_of(second), 1);
  EXPECT_EQ(client->instance_of(second), 1);
  EXPECT_EQ(client->decoder_of(third), 2);
  EXPECT_EQ(client->open_decoder(visengi, {{"d", 0}}, "", &observer), -1);
}

TEST_F(VeIpcSimulated, PollsItsOwnMemory) {
  client->open(true);
  const int handle = client->open_decoder(visengi, {{"a", 0}}, "", &observer);
  const videng::status_block_t block(
      {reinterpret_cast<std::byte*>(client->status_block()), videng::status_block_t::size});
  block.decoder(0).rx_count().add(1);
  poll();
  EXPECT_EQ(observer.take(), (recording_observer_t::decoder_events_t{{handle, ve_stream_up}}));
}

TEST_F(VeIpcSimulated, StaysSimulatedWhenAllIsClosed) {
  client->open(true);
  client->close_all();
  EXPECT_EQ(client->status_block(), nullptr);
  EXPECT_TRUE(client->is_connected());
  EXPECT_FALSE(client->ready());
  log.clear();
  poll();
  EXPECT_TRUE(log.lines().empty());
  EXPECT_EQ(client->open_decoder(visengi, {{"a", 0}}, "", &observer), -1);

  start_engine();
  client->open(false);
  EXPECT_TRUE(test_support::loop_until(loop.base(), [this] { return client->ready(); }));
  EXPECT_EQ(engine->connections(), 1);
}
