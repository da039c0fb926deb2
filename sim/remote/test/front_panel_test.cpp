#include "sim/remote/front_panel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <optional>
#include <string>

#include "sim/remote/appliance_process.h"

using sim::key_e;
using sim::led_t;
using testing::HasSubstr;

namespace {

constexpr std::chrono::milliseconds short_limit{20};
/// In which an answer surely comes.
constexpr std::chrono::milliseconds answered_limit{1000};
constexpr const char* blue = "/sys/class/leds/xk1-rgb-led:blue:status/";

class FrontPanel : public testing::Test {
 protected:
  /// Something that sees the appliance's devices writes to one of its files.
  void write(const std::string& file, const std::string& text) {
    sim::child_process_t shell({"sh", "-c", "printf %s \"$1\" >\"$2\"", "sh", text, file},
                               {sim::device_environment(remote), ""});
    EXPECT_EQ(shell.wait(sim::generous_limit), std::optional(0));
  }

  sim::appliance_process_t appliance;
  sim::remote_control_t remote;
  sim::front_panel_t panel{remote};
};

}  // namespace

TEST_F(FrontPanel, SeesWhatTheLampLooksLike) {
  EXPECT_EQ(panel.led(), led_t{});
  EXPECT_TRUE(panel.expect_led_off());
  write(std::string(blue) + "brightness", "15");
  const auto lit = panel.expect_led_steady("blue", 15);
  EXPECT_TRUE(lit) << lit.seen;
  EXPECT_EQ(panel.led(), (led_t{"blue", 15, 0}));
  EXPECT_EQ(panel.led_changes(), 1);
  EXPECT_TRUE(panel.expect_led_written(std::string(blue) + "brightness", "15"));
}

TEST_F(FrontPanel, SeesTheLampBlink) {
  write(std::string(blue) + "trigger", "pattern");
  write(std::string(blue) + "pattern", "15 500 15 0 0 500 0 0");
  const auto blinks = panel.expect_led_blinking("blue", 15, std::chrono::milliseconds(1000));
  EXPECT_TRUE(blinks) << blinks.seen;
  EXPECT_TRUE(panel.expect_led_blinking("blue", 15, std::chrono::milliseconds(1100)));
  EXPECT_FALSE(panel.expect_led_blinking("blue", 15, std::chrono::milliseconds(200), short_limit));
  EXPECT_FALSE(panel.expect_led_steady("blue", 15, short_limit));
}

TEST_F(FrontPanel, AWaitForTheLampThatFailsSaysWhatItSaw) {
  const auto outcome = panel.expect_led_steady("green", 15, answered_limit);
  EXPECT_FALSE(outcome);
  EXPECT_THAT(outcome.seen, HasSubstr("is \"off\" after 1000 ms, not green at 15, steady"));
}

TEST_F(FrontPanel, HoldsAKeyUntilSomethingHasCome) {
  const auto outcome = panel.hold(key_e::reset, [this] { return remote.expect_property("/sim/key/reset", "press"); });
  EXPECT_TRUE(outcome) << outcome.seen;
  EXPECT_EQ(remote.value("/sim/key/reset"), "release");
  panel.repeat(key_e::id);
  EXPECT_EQ(remote.value("/sim/key/id"), "repeat");
}

TEST_F(FrontPanel, WaitsForTheStartOfTheResetScript) {
  panel.set_reset_script_behaviour("runs");
  EXPECT_EQ(panel.reset_script_starts(), 0);
  EXPECT_FALSE(panel.expect_reset_script(1, "--level=1", short_limit));
  sim::child_process_t script({"/usr/zyl/www/cgi-bin/factory_reset_script", "--level=1"});
  const auto started = panel.expect_reset_script(1);
  EXPECT_TRUE(started) << started.seen;
  EXPECT_TRUE(panel.expect_reset_script_running(true));
  panel.end_reset_script("exits 7");
  EXPECT_EQ(script.wait(sim::generous_limit), std::optional(7));
  EXPECT_TRUE(panel.expect_reset_script_running(false));
}

TEST_F(FrontPanel, RunsTheProcessOfTheRuntimeEngine) {
  panel.set_runtime_engine_name("engine");
  panel.start_runtime_engine();
  EXPECT_EQ(remote.value("/sim/runtime_engine/process"), "1");
  panel.stop_runtime_engine();
  EXPECT_EQ(remote.value("/sim/runtime_engine/process"), "0");
}

TEST(Looks, AreTakenApart) {
  EXPECT_EQ(sim::parse_looks("off"), std::optional(led_t{}));
  EXPECT_EQ(sim::parse_looks("blue at 15, steady"), std::optional(led_t{"blue", 15, 0}));
  EXPECT_EQ(sim::parse_looks("green at 255, blinks every 1000 ms"), std::optional(led_t{"green", 255, 1000}));
  for (const char* text : {"", "blue", "blue at 15", "blue at 15, blinks", "blue at 1500, steady"}) {
    EXPECT_EQ(sim::parse_looks(text), std::nullopt) << text;
  }
}
