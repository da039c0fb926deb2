#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/scenarios/front_panel_scenario.h"

namespace scenarios {
namespace {

/// Model 106: one lamp, blue or green, that shows the status too.
class StatusLamp : public FrontPanelScenario {};

TEST_F(StatusLamp, IsGreenOnlyWhileAGoodDesignGetsAValidFormat) {
  start_with_keys();
  expect_lamp(blue);
  set_design_status("OK");
  let_engine_run();
  EXPECT_EQ(panel().led(), blue) << "a good design alone is not enough";
  set_valid_format("true");
  expect_lamp(green);
  set_valid_format("false");
  expect_lamp(blue);
  set_valid_format("true");
  expect_lamp(green);
  set_design_status("Failed");
  expect_lamp(blue);
}

TEST_F(StatusLamp, IsBlueAgainWhenTheRuntimeEngineStops) {
  start_with_keys();
  let_engine_run();
  set_valid_format("true");
  set_design_status("OK");
  expect_lamp(green);
  remote().design("Stopping");
  expect_lamp(blue);
}

TEST_F(StatusLamp, IsAsBrightAsTheUserChooses) {
  start_with_keys();
  expect_lamp(blue);
  // Each differs from the one before it, so that each is seen.
  const std::vector<std::pair<std::string, uint32_t>> settings{
      {"Dim", 5}, {"Bright", 15}, {"Off", 0}, {"Di", 15},    {"Off", 0},
      {"Of", 15}, {"Offline", 0}, {"", 15},   {"Dimmed", 5}, {"dim", 15}};
  for (const auto& [setting, brightness] : settings) {
    SCOPED_TRACE(testing::Message() << '"' << setting << '"');
    panel().set_brightness_setting(setting);
    expect_lamp(brightness == 0 ? led_t{} : led_t{"blue", brightness, 0});
  }
}

TEST_F(StatusLamp, IsAsBrightAsTheUserChoseBeforeTheStart) {
  panel().set_brightness_setting("Dim");
  start_with_keys();
  expect_lamp({"blue", 5, 0});
}

TEST_F(StatusLamp, FlashesAtFullBrightnessThoughTheUserSwitchedItOff) {
  start_with_keys();
  expect_lamp(blue);
  panel().set_brightness_setting("Off");
  expect_lamp({});
  set_id_mode("on");
  expect_blinking(green, id_mode_period);
  set_id_mode("off");
  expect_lamp({});
}

TEST_F(StatusLamp, ShowsAStatusThatCameInIdModeAtItsEnd) {
  start_with_keys();
  set_id_mode("on");
  expect_blinking(green, id_mode_period);
  set_valid_format("true");
  set_design_status("OK");
  let_engine_run();
  EXPECT_EQ(panel().led(), (led_t{"green", 15, 1000})) << "id mode goes on";
  set_id_mode("off");
  expect_lamp(green);
}

TEST_F(StatusLamp, KeepsFlashingWhenIdModeIsSwitchedOnOnceMore) {
  start_with_keys();
  set_id_mode("on");
  expect_blinking(green, id_mode_period);
  set_id_mode("on");
  let_engine_run();
  EXPECT_EQ(panel().led(), (led_t{"green", 15, 1000}));
}

/// The other models: a white lamp that can only be on or off, so the daemon lets it blink.
class IdLamp : public FrontPanelOfModel {};

TEST_P(IdLamp, GoesOnAndOffByItselfInIdMode) {
  start_with_keys();
  EXPECT_EQ(panel().led(), led_t{});
  set_id_mode("on");
  expect_changes_of_light(4);
  expect_blinking(flashing_lamp(), id_mode_period);
  set_id_mode("off");
  expect_lamp({});
}

TEST_P(IdLamp, IsStoppedByASecondOnAndStartedByAThird) {
  start_with_keys();
  set_id_mode("on");
  expect_blinking(flashing_lamp());
  set_id_mode("on");
  const auto steady = panel().expect_led("steady", [](const led_t& led) { return led.period_ms == 0; });
  EXPECT_TRUE(steady) << steady.seen;
  set_id_mode("on");
  expect_blinking(flashing_lamp());
  set_id_mode("off");
  expect_lamp({});
}

TEST_P(IdLamp, ShowsNothingOfADesign) {
  start_with_keys();
  set_valid_format("true");
  set_design_status("OK");
  let_engine_run();
  EXPECT_EQ(panel().led(), led_t{});
  EXPECT_EQ(panel().led_changes(), 0);
}

INSTANTIATE_TEST_SUITE_P(Models, IdLamp, testing::Values(105, 85));

class LampOfModel : public FrontPanelOfModel {};

TEST_P(LampOfModel, WhoseDriverComesLateIsPickedUpAtTheNextUse) {
  static const std::map<int, std::string> complaints{
      {105, "PWM LED 'pwm-0' not found"},
      {106, "PWM LED 'xk1-rgb-led:blue:status' not found"},
      {137, "LED file /sys/class/leds/id_led/brightness doesn't exist"},
  };
  panel().set_led_driver(false);
  expect_property("/sim/led/driver", "absent");
  start_with_keys();
  expect_told(complaints.at(GetParam()));
  EXPECT_EQ(panel().led(), led_t{});
  panel().set_led_driver(true);
  set_id_mode("on");
  expect_blinking(flashing_lamp(), id_mode_period);
  set_id_mode("off");
  expect_lamp(idle_lamp());
}

INSTANTIATE_TEST_SUITE_P(Models, LampOfModel, testing::Values(105, 106, 137));

}  // namespace
}  // namespace scenarios
