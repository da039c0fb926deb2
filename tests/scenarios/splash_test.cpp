#include <filesystem>
#include <fstream>
#include <string>

#include "tests/scenarios/daemon_scenario.h"

namespace scenarios {
namespace {

class Splash : public DaemonScenario {};

TEST_F(Splash, ADisplayPluggedAfterTheStartGetsItsModeAndItsSplash) {
  start_daemon();
  remote().plug(0, sim::full_hd_display_edid());
  const auto timing = remote().expect_timing(0, 1920, 1080);
  EXPECT_TRUE(timing) << timing.seen;
  expect_published(0, "1920x1080");
  expect_splash(0);
}

TEST_F(Splash, ADisplayPluggedBeforeTheStartGetsItsModeAndItsSplash) {
  remote().plug(0, sim::full_hd_display_edid());
  start_daemon();
  expect_published(0, "1920x1080");
  expect_splash(0);
}

TEST_F(Splash, A4KDisplayIsDrivenIn4KWhileTheSplashAndThePublishedSizeStayFullHd) {
  start_daemon();
  remote().plug(0, sim::uhd_display_edid());
  const auto timing = remote().expect_timing(0, 3840, 2160);
  EXPECT_TRUE(timing) << timing.seen;
  const auto chosen = remote().expect_log("vgn_streamer_proxy::set_preferred_mode hdmi_index=0 mode=3840x2160@60");
  EXPECT_TRUE(chosen) << chosen.seen;
  expect_published(0, "1920x1080");
  expect_splash(0);
}

TEST_F(Splash, TheAudioClockIsProgrammedWithTheMode) {
  start_daemon();
  remote().plug(0, sim::full_hd_display_edid());
  const auto audio = remote().expect_property(sim::hdmi_path(0, "audio"), "6144 148500 148500");
  EXPECT_TRUE(audio) << audio.seen;
}

TEST_F(Splash, EachOutputHasItsOwnDisplayAndSplash) {
  start_daemon();
  remote().plug(1, sim::full_hd_display_edid());
  expect_splash(1);
  expect_published(1, "1920x1080");
  expect_disconnected(0);
  remote().plug(0, sim::uhd_display_edid());
  expect_splash(0);
  expect_splash(1);
}

TEST_F(Splash, AnUnpluggedDisplayTakesItsSplashWithIt) {
  start_daemon();
  remote().plug(0, sim::full_hd_display_edid());
  expect_splash(0);
  remote().unplug(0);
  expect_disconnected(0);
  const auto mode = remote().expect_property(splash_mode_path(0), "disable");
  EXPECT_TRUE(mode) << mode.seen;
  const auto raw_out = remote().expect_property("/sim/engine/raw_out/0", "-1 0 0");
  EXPECT_TRUE(raw_out) << raw_out.seen;
}

TEST_F(Splash, ADisplayPluggedAgainGetsItsSplashAgain) {
  start_daemon();
  for (int round = 0; round < 3; ++round) {
    remote().plug(0, sim::full_hd_display_edid());
    expect_splash(0);
    expect_published(0, "1920x1080");
    remote().unplug(0);
    expect_disconnected(0);
  }
}

TEST_F(Splash, ADisplayWithNothingUsableIsToldAndLeftAlone) {
  start_daemon();
  remote().plug(0, sim::unusable_display_edid());
  const auto told = remote().expect_log("vgn_streamer_proxy::on_output_connection empty modes list");
  EXPECT_TRUE(told) << told.seen;
  EXPECT_EQ(remote().value(sim::hdmi_path(0, "timing")), "");
  EXPECT_EQ(remote().value(published_path(0)), "disconnected");
}

TEST_F(Splash, APictureForDisconnectedOutputsIsOfferedInPlaceOfTheBootSplash) {
  std::filesystem::create_directories("/var/run/xk-graphics");
  std::ofstream("/var/run/xk-graphics/disconnected_image") << "picture";
  launch_daemon();
  const auto mode = remote().expect_property(splash_mode_path(0), "graphic");
  EXPECT_TRUE(mode) << mode.seen;
  const auto graphic = remote().expect_property("/xk_splash/0/graphic", "/var/run/xk-graphics/disconnected_image");
  EXPECT_TRUE(graphic) << graphic.seen;
}

}  // namespace
}  // namespace scenarios
