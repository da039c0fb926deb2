#include "sim/screen.h"

#include <gtest/gtest.h>

#include <string>

namespace {

class Screen : public testing::Test {
 protected:
  /// All that makes output 0 show the boot splash.
  void show_splash() {
    tree.publish("/sim/hdmi/0/connected", "1");
    tree.publish("/sim/hdmi/0/timing", "594000 3840 4016 4104 4400 2160 2168 2178 2250 0");
    tree.publish("/sim/hdmi/0/source", "zvid-raw-frame_inject_in_0");
    tree.publish("/sim/engine/running", "1");
    tree.publish("/sim/engine/decoder/5", "videng-pnl8-dmabuf0");
    tree.publish("/sim/engine/raw_out/0", "1 1920 1080");
    tree.publish("/sim/splash/0/drawn", "boot_splash_screen");
  }

  std::string shown(int output = 0) { return tree.value("/sim/hdmi/" + std::to_string(output) + "/shows"); }

  sim::property_tree_t tree;
  sim::story_t story;
  sim::screen_t screen{tree, story, 2};
};

}  // namespace

TEST_F(Screen, WithoutADisplayNothingIsConnected) {
  EXPECT_EQ(shown(0), "nothing connected");
  EXPECT_EQ(shown(1), "nothing connected");
  EXPECT_EQ(tree.find("/sim/hdmi/2/shows"), nullptr);
}

TEST_F(Screen, ADisplayAloneIsDark) {
  tree.publish("/sim/hdmi/1/connected", "1");
  EXPECT_EQ(shown(0), "nothing connected");
  EXPECT_EQ(shown(1), "dark");
}

TEST_F(Screen, TheSplashIsSeenWhenAllPartsDoTheirs) {
  show_splash();
  EXPECT_EQ(shown(), "splash boot_splash_screen at 1920x1080");
  EXPECT_EQ(shown(1), "nothing connected");
}

TEST_F(Screen, AnyPartMissingLeavesItDark) {
  const std::pair<const char*, const char*> faults[] = {
      {"/sim/hdmi/0/timing", ""},       {"/sim/hdmi/0/source", ""},          {"/sim/engine/running", "0"},
      {"/sim/engine/decoder/5", ""},    {"/sim/engine/raw_out/0", "-1 0 0"}, {"/sim/engine/raw_out/0", ""},
      {"/sim/splash/0/drawn", ""},      {"/sim/splash/0/drawn", "disable"},  {"/sim/hdmi/0/source", "hdmi_in_0"},
      {"/sim/engine/raw_out/0", "1 x"}, {"/sim/engine/raw_out/0", "1 0 0"}};
  for (const auto& [path, value] : faults) {
    show_splash();
    ASSERT_EQ(shown(), "splash boot_splash_screen at 1920x1080");
    tree.publish(path, value);
    EXPECT_EQ(shown(), "dark") << path << "=" << value;
  }
}

TEST_F(Screen, TheSplashOfTheOtherOutputIsNotSeenHere) {
  show_splash();
  tree.publish("/sim/engine/decoder/5", "videng-pnl8-dmabuf1");
  EXPECT_EQ(shown(), "dark");
}

TEST_F(Screen, OnlyAChangeOfWhatIsSeenIsTold) {
  show_splash();
  int told = 0;
  tree.on_change([&](const std::string& path, const std::string&) { told += path == "/sim/hdmi/0/shows" ? 1 : 0; });
  tree.publish("/sim/splash/0/drawn", "boot_splash_screen");
  tree.publish("/sim/hdmi/0/edid_reads", "2");
  EXPECT_EQ(told, 0);
  tree.publish("/sim/hdmi/0/connected", "0");
  EXPECT_EQ(told, 1);
  EXPECT_EQ(shown(), "nothing connected");
}
