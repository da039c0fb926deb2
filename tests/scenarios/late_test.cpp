#include <fstream>
#include <iterator>
#include <string>

#include "tests/scenarios/daemon_scenario.h"

// What the daemon needs may come late, go, and come back, in any order.

namespace scenarios {
namespace {

class Late : public DaemonScenario {
 protected:
  void expect_full_hd_timing(int output) {
    const auto timing = remote().expect_timing(output, 1920, 1080);
    EXPECT_TRUE(timing) << timing.seen;
  }
};

TEST_F(Late, WithoutAnEngineTheModeIsSetAndTheSplashFollowsWhenTheEngineComes) {
  remote().stop_engine();
  launch_daemon();
  remote().plug(0, sim::full_hd_display_edid());
  expect_full_hd_timing(0);
  expect_published(0, "1920x1080");
  expect_dark(0);
  remote().start_engine();
  expect_splash(0);
}

TEST_F(Late, AnEngineThatCrashesAndComesBackShowsTheSplashAgain) {
  start_daemon();
  remote().plug(0, sim::full_hd_display_edid());
  expect_splash(0);
  remote().stop_engine();
  expect_dark(0);
  const auto told = remote().expect_log("video_engine disconnected");
  EXPECT_TRUE(told) << told.seen;
  remote().start_engine();
  expect_splash(0);
}

TEST_F(Late, TheSplashWaitsForItsProvider) {
  remote().stop_splash();
  launch_daemon();
  remote().plug(0, sim::full_hd_display_edid());
  expect_full_hd_timing(0);
  expect_published(0, "1920x1080");
  expect_dark(0);
  remote().start_splash();
  expect_splash(0);
}

TEST_F(Late, AStreamerDeviceThatComesAfterTheEngineGetsItsModesAtOnceAndTheSplashAtTheNextReadySignal) {
  remote().remove_streamer();
  launch_daemon();
  const auto connected = remote().expect_property("/sim/engine/connected", "1");
  EXPECT_TRUE(connected) << connected.seen;
  remote().plug(0, sim::full_hd_display_edid());
  remote().add_streamer();
  expect_full_hd_timing(0);
  expect_published(0, "1920x1080");
  remote().stop_splash();
  remote().start_splash();
  expect_splash(0);
}

TEST_F(Late, AStreamerDeviceThatGoesAndComesBackIsPickedUpAgain) {
  start_daemon();
  remote().remove_streamer();
  const auto removed = remote().expect_log("vgn_zsd_interface_t::system_removed");
  EXPECT_TRUE(removed) << removed.seen;
  remote().plug(0, sim::full_hd_display_edid());
  remote().add_streamer();
  expect_full_hd_timing(0);
  expect_published(0, "1920x1080");
}

TEST_F(Late, ADisplayIsNotNeeded) {
  start_daemon();
  expect_disconnected(0);
  expect_disconnected(1);
  EXPECT_EQ(remote().edid_reads(0), 0);
}

/// A world without any service.
TEST(WithoutPropertyService, TheDaemonEndsWithStatus255AndSaysWhy) {
  sim::child_process_t::options_t options;
  options.output_file = "/tmp/output";
  sim::child_process_t daemon({sim::program_folder() + "/vgn_control"}, options);
  EXPECT_EQ(daemon.wait(sim::generous_limit), 255);
  std::ifstream output("/tmp/output");
  const std::string said((std::istreambuf_iterator<char>(output)), {});
  EXPECT_NE(said.find("platform_t unable to read platform information from property engine."), std::string::npos)
      << said;
}

}  // namespace
}  // namespace scenarios
