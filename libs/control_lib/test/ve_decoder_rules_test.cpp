#include "control_lib/src/ve_decoder_rules.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

using namespace control_lib;

namespace {

class VeDecoderStatus : public testing::Test {
 protected:
  void update(double wall_s = 100) { update_decoder_status(cache, entry, faults, wall_s); }

  std::vector<std::byte> bytes = std::vector<std::byte>(videng::decoder_entry_t::size);
  videng::decoder_entry_t entry{bytes.data()};
  decoder_status_t cache;
  simulated_faults_t faults;
};

decoder_handle_t claim(std::list<uri_t> uris, std::string key = "") {
  decoder_handle_t handle;
  handle.uris = std::move(uris);
  handle.key = std::move(key);
  return handle;
}

common_uris_t common_of(const std::vector<decoder_handle_t>& handles) {
  std::vector<const decoder_handle_t*> pointers;
  for (const decoder_handle_t& handle : handles) {
    pointers.push_back(&handle);
  }
  return intersect_uris(pointers);
}

/// A decoder that was configured at `since_ms`.
decoder_t configured(int64_t since_ms, int dpldr = videng::depayloader_visengi) {
  decoder_t decoder;
  decoder.dpldr = dpldr;
  decoder.uri = {"u", 0};
  decoder.stream_down_ms = since_ms;
  decoder.decoder_down_ms = since_ms;
  return decoder;
}

template <typename T>
std::string text_of(const T& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

}  // namespace

TEST(VeUri, PrintsItsTextInQuotesAndItsStream) {
  EXPECT_EQ(text_of(uri_t{"rtsp://a", 1}), "\"rtsp://a\":1");
  EXPECT_EQ(text_of(std::list<uri_t>{{"a", 0}, {"b", -1}}), "\"a\":0, \"b\":-1");
  EXPECT_EQ(text_of(std::list<uri_t>{}), "");
}

TEST_F(VeDecoderStatus, AChangeOfThePayloadCountIsTheStreamOfANetworkDecoder) {
  entry.type().store(videng::depayloader_visengi);
  entry.rx_count().store(5);
  update();
  EXPECT_TRUE(cache.stream_active);
  EXPECT_TRUE(cache.stream_changed);
  entry.rx_count().store(4);
  update();
  EXPECT_TRUE(cache.stream_active);
  EXPECT_FALSE(cache.stream_changed);
  entry.decoded_count().store(1);
  update();
  EXPECT_FALSE(cache.stream_active);
  EXPECT_TRUE(cache.stream_changed);
}

TEST_F(VeDecoderStatus, AChangeOfTheDecodedCountIsTheStreamOfADmabuf) {
  entry.type().store(videng::depayloader_mediacast_dmabuf);
  entry.rx_count().store(5);
  update();
  EXPECT_FALSE(cache.stream_active);
  entry.decoded_count().store(1);
  update();
  EXPECT_TRUE(cache.stream_active);
}

TEST_F(VeDecoderStatus, ARisingDecodedCountIsADecoderThatIsUp) {
  entry.decoded_count().store(1);
  update();
  EXPECT_TRUE(cache.decoder_active);
  EXPECT_TRUE(cache.decoder_changed);
  entry.decoded_count().store(2);
  update();
  EXPECT_TRUE(cache.decoder_active);
  EXPECT_FALSE(cache.decoder_changed);
  update();
  EXPECT_FALSE(cache.decoder_active);
  EXPECT_TRUE(cache.decoder_changed);
  entry.decoded_count().store(1);
  update();
  EXPECT_FALSE(cache.decoder_active);
  EXPECT_FALSE(cache.decoder_changed);
}

TEST_F(VeDecoderStatus, TheFirstFrameAfterAConfigurationIsNewsEvenIfTheDecoderWasUp) {
  entry.decoded_count().store(1);
  update();
  entry.config_result().store(1);
  entry.decoded_count().store(2);
  update();
  EXPECT_TRUE(cache.decoder_active);
  EXPECT_TRUE(cache.decoder_changed);
  EXPECT_FALSE(cache.config_pending);
}

TEST_F(VeDecoderStatus, AConfigurationWithoutFramesStaysPending) {
  entry.config_result().store(1);
  update();
  EXPECT_TRUE(cache.config_pending);
  EXPECT_FALSE(cache.decoder_active);
  update();
  EXPECT_TRUE(cache.config_pending);
  entry.decoded_count().store(1);
  update();
  EXPECT_FALSE(cache.config_pending);
  EXPECT_TRUE(cache.decoder_changed);
}

TEST_F(VeDecoderStatus, ARefusedConfigurationIsNotPending) {
  entry.config_result().store(-1);
  update();
  EXPECT_FALSE(cache.config_pending);
  EXPECT_EQ(cache.config_count, -1);
}

TEST_F(VeDecoderStatus, TakesTheCountsOver) {
  entry.type().store(2);
  entry.instance().store(3);
  entry.payload_count().store(4);
  entry.decrypt_err_count().store(5);
  entry.frame_count().store(6);
  update();
  EXPECT_EQ(cache.type, 2);
  EXPECT_EQ(cache.instance, 3);
  EXPECT_EQ(cache.payload_count, 4U);
  EXPECT_EQ(cache.decrypt_err_count, 5U);
  EXPECT_EQ(cache.frame_count, 6U);
}

TEST_F(VeDecoderStatus, ASimulatedDecryptionErrorCountsInTheBlock) {
  faults.decrypt_err = true;
  update();
  update();
  EXPECT_EQ(entry.decrypt_err_count().load(), 2U);
  EXPECT_EQ(cache.decrypt_err_count, 2U);
}

TEST_F(VeDecoderStatus, ASimulatedDecodeFailureHoldsTheDecodedCount) {
  entry.decoded_count().store(1);
  update();
  faults.decode_fail = true;
  entry.decoded_count().store(2);
  update();
  EXPECT_FALSE(cache.decoder_active);
  EXPECT_TRUE(cache.decoder_changed);
  EXPECT_EQ(cache.decoded_count, 1U);
}

TEST_F(VeDecoderStatus, ASimulatedReceiveFailureHoldsTheStream) {
  entry.rx_count().store(1);
  update();
  faults.rx_fail = true;
  entry.rx_count().store(2);
  update();
  EXPECT_FALSE(cache.stream_active);
  EXPECT_TRUE(cache.stream_changed);
}

TEST_F(VeDecoderStatus, TheFirstTwoFrameCountsGiveTheRate) {
  entry.frame_count().store(10);
  update(100);
  EXPECT_EQ(cache.rate, 0);
  entry.frame_count().store(40);
  update(101);
  EXPECT_FLOAT_EQ(cache.rate, 30);
}

TEST_F(VeDecoderStatus, LaterFrameCountsMoveTheRateByATenth) {
  entry.frame_count().store(10);
  update(100);
  entry.frame_count().store(40);
  update(101);
  entry.frame_count().store(100);
  update(102);
  EXPECT_FLOAT_EQ(cache.rate, 0.9F * 30.0F + 0.100000024F * 60.0F);
  update(103);
  EXPECT_FLOAT_EQ(cache.rate, 0.9F * 30.0F + 0.100000024F * 60.0F);
  EXPECT_EQ(cache.rate_time, 103);
}

TEST_F(VeDecoderStatus, AClearedFrameCountClearsTheRate) {
  entry.frame_count().store(10);
  update(100);
  entry.frame_count().store(40);
  update(101);
  entry.frame_count().store(0);
  update(102);
  EXPECT_EQ(cache.rate, 0);
  EXPECT_EQ(cache.rate_count, 0U);
  EXPECT_EQ(cache.rate_time, 0);
}

TEST(VeSimulatedFaults, AreSwitchedByFiles) {
  EXPECT_FALSE(read_simulated_faults().decrypt_err);
  EXPECT_FALSE(read_simulated_faults().decode_fail);
  EXPECT_FALSE(read_simulated_faults().rx_fail);
  std::ofstream("/tmp/sim_decrypt_err");
  std::ofstream("/tmp/sim_decode_fail");
  std::ofstream("/tmp/sim_rx_fail");
  EXPECT_TRUE(read_simulated_faults().decrypt_err);
  EXPECT_TRUE(read_simulated_faults().decode_fail);
  EXPECT_TRUE(read_simulated_faults().rx_fail);
}

TEST(VeIntersectUris, OfOneClientIsItsList) {
  const auto common = common_of({claim({{"a", 0}, {"b", 1}}, "key")});
  EXPECT_EQ(common.uris, (std::list<uri_t>{{"a", 0}, {"b", 1}}));
  EXPECT_EQ(common.key, "key");
  EXPECT_EQ(common.refused_keys, 0);
}

TEST(VeIntersectUris, KeepsOrderAndStreamsOfTheFirstClient) {
  const auto common = common_of({claim({{"a", 0}, {"b", 1}, {"c", 2}}), claim({{"c", 7}, {"x", 7}, {"a", 7}})});
  EXPECT_EQ(common.uris, (std::list<uri_t>{{"a", 0}, {"c", 2}}));
}

TEST(VeIntersectUris, OfTwoClientsWithNothingInCommonIsEmpty) {
  EXPECT_TRUE(common_of({claim({{"a", 0}}), claim({{"b", 0}})}).uris.empty());
}

TEST(VeIntersectUris, AThirdClientFillsAnEmptiedListAgain) {
  const auto common = common_of({claim({{"a", 0}}), claim({{"b", 0}}), claim({{"c", 3}})});
  EXPECT_EQ(common.uris, (std::list<uri_t>{{"c", 3}}));
}

TEST(VeIntersectUris, WithoutClientsIsEmpty) {
  EXPECT_TRUE(common_of({}).uris.empty());
  EXPECT_EQ(common_of({}).key, "");
}

TEST(VeIntersectUris, TheFirstKeyStaysAndOthersAreCounted) {
  const auto common = common_of({claim({{"a", 0}}, ""), claim({{"a", 0}}, "one"), claim({{"a", 0}}, "one"),
                                 claim({{"a", 0}}, "two"), claim({{"a", 0}}, "three")});
  EXPECT_EQ(common.key, "one");
  EXPECT_EQ(common.refused_keys, 2);
}

TEST(VeWatch, OnlyConfiguredDecodersOfTheStreamingKindsAreWatched) {
  EXPECT_TRUE(is_watched(configured(1, 1)));
  EXPECT_TRUE(is_watched(configured(1, 2)));
  for (const int kind : {0, 3, 4, 5, 6}) {
    EXPECT_FALSE(is_watched(configured(1, kind))) << kind;
  }
  decoder_t idle = configured(1);
  idle.uri = {};
  EXPECT_FALSE(is_watched(idle));
}

TEST(VeStreamTimeout, ComesOnceAt3001Milliseconds) {
  decoder_t decoder = configured(1000);
  const decoder_status_t down;
  EXPECT_FALSE(stream_times_out(decoder, down, 4000));
  EXPECT_TRUE(stream_times_out(decoder, down, 4001));
  EXPECT_TRUE(decoder.stream_timed_out);
  EXPECT_FALSE(stream_times_out(decoder, down, 9000));
}

TEST(VeStreamTimeout, AStreamThatComesDisarmsItAndOneThatEndsArmsItAnew) {
  decoder_t decoder = configured(1000);
  decoder_status_t status;
  status.stream_active = true;
  EXPECT_FALSE(stream_times_out(decoder, status, 9000));
  EXPECT_EQ(decoder.stream_down_ms, 0);
  status.stream_active = false;
  EXPECT_FALSE(stream_times_out(decoder, status, 20000));
  status.stream_changed = true;
  EXPECT_FALSE(stream_times_out(decoder, status, 20000));
  status.stream_changed = false;
  EXPECT_FALSE(stream_times_out(decoder, status, 23000));
  EXPECT_TRUE(stream_times_out(decoder, status, 23001));
}

TEST(VeDecoderTimeout, ComesOnceAfterMoreThan3000Milliseconds) {
  decoder_t decoder = configured(1000);
  const decoder_status_t down;
  EXPECT_EQ(decoder_times_out(decoder, down, 4000), decoder_timeout_e::none);
  EXPECT_EQ(decoder_times_out(decoder, down, 4001), decoder_timeout_e::final);
  EXPECT_EQ(decoder_times_out(decoder, down, 9000), decoder_timeout_e::none);
  EXPECT_EQ(decoder.restart_at_ms, 0);
}

TEST(VeDecoderTimeout, FramesDisarmItAndTheirEndArmsItAnew) {
  decoder_t decoder = configured(1000);
  decoder_status_t status;
  status.decoder_active = true;
  EXPECT_EQ(decoder_times_out(decoder, status, 9000), decoder_timeout_e::none);
  EXPECT_EQ(decoder.decoder_down_ms, 0);
  status = {};
  status.decoder_changed = true;
  EXPECT_EQ(decoder_times_out(decoder, status, 20000), decoder_timeout_e::none);
  status.decoder_changed = false;
  EXPECT_EQ(decoder_times_out(decoder, status, 23001), decoder_timeout_e::final);
}

TEST(VeDecoderTimeout, SchedulesTheRestartsThatTheClientWantsTenTimes) {
  for (const unsigned restarts : {0U, 9U}) {
    decoder_t decoder = configured(1000);
    decoder.auto_restart = true;
    decoder.restart_count = restarts;
    EXPECT_EQ(decoder_times_out(decoder, {}, 4001), decoder_timeout_e::restarting);
    EXPECT_EQ(decoder.restart_at_ms, 6001);
  }
  decoder_t decoder = configured(1000);
  decoder.auto_restart = true;
  decoder.restart_count = 10;
  EXPECT_EQ(decoder_times_out(decoder, {}, 4001), decoder_timeout_e::final);
  EXPECT_EQ(decoder.restart_at_ms, 0);
}

TEST(VeRestart, IsDueOnceAtItsTime) {
  decoder_t decoder = configured(1000);
  decoder.auto_restart = true;
  EXPECT_FALSE(restart_is_due(decoder, 9000));
  decoder.restart_at_ms = 6001;
  EXPECT_FALSE(restart_is_due(decoder, 6000));
  EXPECT_TRUE(restart_is_due(decoder, 6001));
  EXPECT_FALSE(restart_is_due(decoder, 6002));
}

TEST(VeRestart, IsNotDueForAClientThatNoLongerWantsIt) {
  decoder_t decoder = configured(1000);
  decoder.restart_at_ms = 6001;
  EXPECT_FALSE(restart_is_due(decoder, 7000));
}

TEST(VeDecryptDelay, LiesBetween2050And5000Milliseconds) {
  EXPECT_EQ(decrypt_delay_ms(1), 2050);
  EXPECT_EQ(decrypt_delay_ms(2147483646), 5000);
  EXPECT_EQ(decrypt_delay_ms(1073741824), 3525);
  for (int i = 0; i < 1000; ++i) {
    const int delay = next_decrypt_delay_ms();
    EXPECT_GE(delay, 2050);
    EXPECT_LE(delay, 5000);
  }
}
