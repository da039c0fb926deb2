#include <gtest/gtest.h>

#include <vector>

#include "control_lib/test/ve_ipc_fixture.h"

using namespace control_lib;

namespace {

class VeIpcRawOut : public ve_ipc_fixture_t {
 protected:
  std::vector<int> remembered(int n) {
    int decoder = 0;
    int width = 0;
    int height = 0;
    client->raw_out_configuration(n, &decoder, &width, &height);
    return {decoder, width, height};
  }
};

}  // namespace

TEST_F(VeIpcRawOut, IsFoundByItsNameAndAddressedByItsIndex) {
  connect();
  EXPECT_TRUE(client->configure_raw_out(0, 1, 1920, 1080, true, false));
  const auto configs = engine->raw_out_configs();
  ASSERT_EQ(configs.size(), 1U);
  EXPECT_EQ(configs[0].raw_out, 1U);
  EXPECT_EQ(configs[0].decoder, 1U);
  EXPECT_EQ(configs[0].width, 1920U);
  EXPECT_EQ(configs[0].height, 1080U);
  EXPECT_TRUE(said(spdlog::level::debug, "[ve_ipc_t::configure_raw_out] raw_out:1 decoder:1 width:1920 height:1080 ~",
                   "ms OK"));
  EXPECT_EQ(remembered(0), (std::vector{1, 1920, 1080}));
  EXPECT_EQ(remembered(1), (std::vector{-1, -1, -1}));
}

TEST_F(VeIpcRawOut, TheSameValuesAgainSendNothingAndSucceed) {
  connect();
  EXPECT_TRUE(client->configure_raw_out(0, 1, 1920, 1080, true, false));
  EXPECT_TRUE(client->configure_raw_out(0, 1, 1920, 1080, true, false));
  EXPECT_EQ(engine->raw_out_configs().size(), 1U);
  EXPECT_TRUE(client->configure_raw_out(0, 1, 1920, 1081, true, false));
  EXPECT_EQ(engine->raw_out_configs().size(), 2U);
}

TEST_F(VeIpcRawOut, ForceSendsTheSameValuesAgain) {
  connect();
  EXPECT_TRUE(client->configure_raw_out(0, 1, 1920, 1080, true, false));
  EXPECT_TRUE(client->configure_raw_out(0, 1, 1920, 1080, true, true));
  EXPECT_EQ(engine->raw_out_configs().size(), 2U);
}

TEST_F(VeIpcRawOut, WithoutWaitItSucceedsWhateverTheEngineSays) {
  connect();
  engine->set_result(-1);
  EXPECT_TRUE(client->configure_raw_out(1, -1, 0, 0, false, false));
  EXPECT_TRUE(log.said("[ve_ipc_t::configure_raw_out] raw_out:0 decoder:-1 width:0 height:0"));
  ASSERT_TRUE(engine->hears_raw_out_configs(1));
  EXPECT_EQ(engine->raw_out_configs()[0].decoder, 0xFFFFFFFFU);
}

TEST_F(VeIpcRawOut, ARefusalFailsButItsValuesStayRemembered) {
  connect();
  engine->set_result(-1);
  EXPECT_FALSE(client->configure_raw_out(0, 1, 1920, 1080, true, false));
  EXPECT_TRUE(said(spdlog::level::err, "[ve_ipc_t::configure_raw_out] raw_out:1 decoder:1 width:1920 height:1080 ~",
                   "ms ERROR"));
  EXPECT_EQ(remembered(0), (std::vector{1, 1920, 1080}));
  EXPECT_TRUE(client->configure_raw_out(0, 1, 1920, 1080, true, false));
  EXPECT_EQ(engine->raw_out_configs().size(), 1U);
}

TEST_F(VeIpcRawOut, AnEngineThatTakesNothingIsGivenUpAfterTwoSeconds) {
  connect();
  engine->set_result(0);
  EXPECT_FALSE(client->configure_raw_out(0, 1, 1920, 1080, true, false));
  EXPECT_TRUE(said(spdlog::level::err,
                   "[ve_ipc_t::configure_raw_out] raw_out:1 decoder:1 width:1920 height:1080 ~2000ms TIMEOUT"));
}

TEST_F(VeIpcRawOut, AnEarlierAcceptanceIsNotTakenForTheNextOne) {
  connect();
  ASSERT_TRUE(client->configure_raw_out(0, 1, 1920, 1080, true, false));
  engine->set_result(0);
  EXPECT_FALSE(client->configure_raw_out(0, 1, 1280, 720, true, false));
  EXPECT_EQ(engine->block().raw_out_config_result(1).load(), 0);
}

TEST_F(VeIpcRawOut, AnOutputThatTheEngineDoesNotHaveFails) {
  connect();
  EXPECT_FALSE(client->configure_raw_out(2, 1, 1920, 1080, true, false));
  EXPECT_TRUE(said(spdlog::level::err,
                   "[ve_ipc_t::configure_raw_out] raw instance \"zvid-raw-frame_inject_in_2\" "
                   "not found.  decoder:1"));
  EXPECT_EQ(remembered(2), (std::vector{-1, -1, -1}));
}

TEST_F(VeIpcRawOut, WithoutABlockItFailsSilently) {
  EXPECT_FALSE(client->configure_raw_out(0, 1, 1920, 1080, true, false));
  EXPECT_TRUE(log.lines().empty());
  EXPECT_EQ(remembered(0), (std::vector{-1, -1, -1}));
}

TEST_F(VeIpcRawOut, SimulatedItIsRememberedAndNotSent) {
  client->open(true);
  const videng::status_block_t block(
      {reinterpret_cast<std::byte*>(client->status_block()), videng::status_block_t::size});
  block.set_name(videng::raw_outs, 0, "zvid-raw-frame_inject_in_0");
  EXPECT_TRUE(client->configure_raw_out(0, 0, 1920, 1080, true, false));
  EXPECT_EQ(remembered(0), (std::vector{0, 1920, 1080}));
}
