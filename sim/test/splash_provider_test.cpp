#include "sim/splash_provider.h"

#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>

namespace {

class SplashProvider : public testing::Test {
 protected:
  static std::string told() {
    std::ifstream file("/tmp/story");
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
  }

  sim::property_tree_t tree;
  sim::story_t story{"/tmp/story"};
};

}  // namespace

TEST_F(SplashProvider, IsReadyForEveryOutputOfTheModelAndNoOther) {
  const sim::splash_provider_t provider(tree, story, 2);
  EXPECT_EQ(tree.value("/sim/splash/running"), "1");
  EXPECT_EQ(tree.value("/xk_splash/0/ready"), "1");
  EXPECT_EQ(tree.value("/xk_splash/1/ready"), "1");
  EXPECT_EQ(tree.find("/xk_splash/2/ready"), nullptr);
}

TEST_F(SplashProvider, DrawsWhatTheModeSays) {
  const sim::splash_provider_t provider(tree, story, 2);
  tree.set("/xk_splash/1/mode", "boot_splash_screen");
  EXPECT_EQ(tree.value("/sim/splash/1/drawn"), "boot_splash_screen");
  EXPECT_EQ(tree.value("/sim/splash/0/drawn"), "");
  EXPECT_TRUE(told().ends_with("\tsplash\toutput 1: draws boot_splash_screen\n")) << told();
  tree.set("/xk_splash/1/mode", "disable");
  EXPECT_EQ(tree.value("/sim/splash/1/drawn"), "disable");
  EXPECT_TRUE(told().ends_with("\tsplash\toutput 1: stops drawing\n")) << told();
}

TEST_F(SplashProvider, AGraphicIsToldWithItsFile) {
  const sim::splash_provider_t provider(tree, story, 2);
  tree.set("/xk_splash/0/graphic", "/var/picture");
  tree.set("/xk_splash/0/mode", "graphic");
  EXPECT_TRUE(told().ends_with("\tsplash\toutput 0: draws graphic /var/picture\n")) << told();
}

TEST_F(SplashProvider, OneThatHasEndedIsNotReadyAndDrawsNothing) {
  const sim::splash_provider_t provider(tree, story, 2);
  tree.set("/xk_splash/0/mode", "boot_splash_screen");
  tree.set("/sim/splash/running", "0");
  EXPECT_EQ(tree.value("/xk_splash/0/ready"), "0");
  EXPECT_EQ(tree.value("/sim/splash/0/drawn"), "");
  tree.set("/xk_splash/0/mode", "graphic");
  EXPECT_EQ(tree.value("/sim/splash/0/drawn"), "");
}

TEST_F(SplashProvider, OneThatStartsAgainTellsSoAndDrawsTheModeOfTheMeantime) {
  const sim::splash_provider_t provider(tree, story, 2);
  tree.set("/sim/splash/running", "0");
  tree.set("/xk_splash/0/mode", "boot_splash_screen");
  std::string ready;
  tree.on_change(
      [&](const std::string& path, const std::string& value) { ready += path == "/xk_splash/0/ready" ? value : ""; });
  tree.set("/sim/splash/running", "1");
  EXPECT_EQ(ready, "1");
  EXPECT_EQ(tree.value("/sim/splash/0/drawn"), "boot_splash_screen");
}
