#include "tests/scenarios/daemon_scenario.h"

namespace scenarios {
namespace {

class Design : public DaemonScenario {
 protected:
  void run_design() {
    remote().design("Running");
    // The engine first, then the driver: a plug in between would still be heard of.
    for (const char* path : {"/sim/engine/connected", "/sim/streamer/open"}) {
      const auto let_go = remote().expect_property(path, "0");
      EXPECT_TRUE(let_go) << let_go.seen;
    }
  }
};

TEST_F(Design, WhenOneStartsTheDaemonLetsGoOfTheOutputs) {
  start_daemon();
  remote().plug(0, sim::full_hd_display_edid());
  expect_splash(0);
  run_design();
  expect_dark(0);
  const auto screens = remote().expect_property("/vgn_ui/vgn_ui_control", "0");
  EXPECT_TRUE(screens) << screens.seen;
  const auto mode = remote().expect_property(splash_mode_path(0), "disable");
  EXPECT_TRUE(mode) << mode.seen;
}

TEST_F(Design, WhenItStopsTheDaemonTakesTheOutputsBack) {
  start_daemon();
  remote().plug(0, sim::full_hd_display_edid());
  expect_splash(0);
  run_design();
  expect_dark(0);
  remote().design("Stopped");
  expect_splash(0);
  const auto screens = remote().expect_property("/vgn_ui/vgn_ui_control", "1");
  EXPECT_TRUE(screens) << screens.seen;
}

TEST_F(Design, ADisplayPluggedWhileOneRunsIsNotTouchedBeforeItStops) {
  start_daemon();
  run_design();
  remote().plug(0, sim::full_hd_display_edid());
  expect_dark(0);
  EXPECT_EQ(remote().edid_reads(0), 0);
  EXPECT_EQ(remote().value(sim::hdmi_path(0, "timing")), "");
  remote().design("Stopped");
  expect_published(0, "1920x1080");
  expect_splash(0);
  EXPECT_EQ(remote().edid_reads(0), 1);
}

TEST_F(Design, ADisplayUnpluggedWhileOneRunsIsToldWhenItStops) {
  start_daemon();
  remote().plug(0, sim::full_hd_display_edid());
  expect_splash(0);
  run_design();
  remote().unplug(0);
  const auto unplugged = remote().expect_shows(0, "nothing connected");
  EXPECT_TRUE(unplugged) << unplugged.seen;
  EXPECT_EQ(remote().value(published_path(0)), "1920x1080");
  remote().design("Stopped");
  expect_disconnected(0);
}

TEST_F(Design, OneThatRunsAlreadyWhenTheDaemonStartsKeepsItsOutputs) {
  remote().design("Running");
  remote().plug(0, sim::full_hd_display_edid());
  launch_daemon();
  const auto screens = remote().expect_property("/vgn_ui/vgn_ui_control", "0");
  EXPECT_TRUE(screens) << screens.seen;
  remote().design("Stopped");
  expect_splash(0);
}

}  // namespace
}  // namespace scenarios
