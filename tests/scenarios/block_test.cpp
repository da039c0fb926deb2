#include <chrono>

#include "tests/scenarios/front_panel_scenario.h"

namespace scenarios {
namespace {

/// In which a daemon that is not blocked has long begun.
constexpr std::chrono::milliseconds time_to_begin{1000};

class Block : public FrontPanelScenario {
 protected:
  void launch_blocked_daemon() {
    launch_daemon({{"VGN_CONTROL_BLOCK", "1 trailing"}});
    expect_property("/vgn_ui/vgn_ui_control", "0");
    const auto open = panel().expect_keys_open();
    EXPECT_TRUE(open) << open.seen;
  }
};

TEST_F(Block, KeepsTheDaemonsHandsOffTheVideoSideForGood) {
  remote().plug(0, sim::full_hd_display_edid());
  launch_blocked_daemon();
  expect_told("disable_vgn_ui_control detected. vgn_control video functions was disabled permanently.");
  EXPECT_FALSE(remote().expect_property("/sim/engine/connected", "1", time_to_begin));
  EXPECT_EQ(remote().value("/sim/engine/connected"), "0");
  EXPECT_EQ(remote().edid_reads(0), 0);
  EXPECT_EQ(remote().log().find("vgn_streamer_proxy::run"), std::string::npos);
}

TEST_F(Block, NeedsTheExactWord) {
  remote().plug(0, sim::full_hd_display_edid());
  launch_daemon({{"VGN_CONTROL_BLOCK", "01"}});
  expect_splash(0);
}

TEST_F(Block, LeavesIdModeToTheKeyAndTheLamp) {
  launch_blocked_daemon();
  expect_lamp(blue);
  panel().press(key_e::id);
  expect_id_mode("on");
  expect_blinking(green, id_mode_period);
  panel().press(key_e::id);
  expect_id_mode("off");
  expect_lamp(blue);
}

TEST_F(Block, LeavesTheFactoryResetToItsKey) {
  launch_blocked_daemon();
  panel().press(key_e::reset);
  expect_blinking(green, reset_period);
  panel().release(key_e::reset);
  expect_lamp(blue);
}

TEST_F(Block, TurnsTheDesignsStatusAwayAndNothingElseOfTheLamp) {
  launch_blocked_daemon();
  panel().set_brightness_setting("Dim");
  expect_lamp({"blue", 5, 0});
  set_valid_format("true");
  set_design_status("OK");
  remote().design("Stopped");
  // Heard after those.
  set_id_mode("on");
  expect_blinking(green, id_mode_period);
  set_id_mode("off");
  expect_lamp({"blue", 5, 0});
  EXPECT_EQ(remote().value("/vgn_ui/hdmi1_current_screen"), "");
  EXPECT_EQ(remote().value("/vgn_ui/vgn_ui_control"), "0");
}

}  // namespace
}  // namespace scenarios
