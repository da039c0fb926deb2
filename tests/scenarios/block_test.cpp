#include "tests/scenarios/daemon_scenario.h"

namespace scenarios {
namespace {

class Block : public DaemonScenario {};

TEST_F(Block, KeepsTheDaemonsHandsOffTheVideoSideForGood) {
  remote().plug(0, sim::full_hd_display_edid());
  launch_daemon({{"VGN_CONTROL_BLOCK", "1 trailing"}});
  const auto screens = remote().expect_property("/vgn_ui/vgn_ui_control", "0");
  EXPECT_TRUE(screens) << screens.seen;
  const auto told =
      remote().expect_log("disable_vgn_ui_control detected. vgn_control video functions was disabled permanently.");
  EXPECT_TRUE(told) << told.seen;
  EXPECT_EQ(remote().edid_reads(0), 0);
  EXPECT_EQ(remote().value("/sim/engine/connected"), "0");
  EXPECT_EQ(remote().log().find("vgn_streamer_proxy::run"), std::string::npos);
}

TEST_F(Block, NeedsTheExactWord) {
  remote().plug(0, sim::full_hd_display_edid());
  launch_daemon({{"VGN_CONTROL_BLOCK", "01"}});
  expect_splash(0);
}

}  // namespace
}  // namespace scenarios
