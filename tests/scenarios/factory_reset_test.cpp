#include <algorithm>
#include <chrono>
#include <string>

#include "tests/scenarios/front_panel_scenario.h"

namespace scenarios {
namespace {

using test_clock_t = std::chrono::steady_clock;

// The hold that starts the script is five seconds by a coarse timer, a twentieth more or less.
constexpr std::chrono::milliseconds shortest_hold{4750};
constexpr std::chrono::milliseconds too_short_hold{4500};
/// More than is left of it then.
constexpr std::chrono::milliseconds rest_of_hold{1000};

class ResetKeyOfModel : public FrontPanelOfModel {};

TEST_P(ResetKeyOfModel, LetsTheLampBlinkQuicklyUntilItsRelease) {
  start_with_keys();
  panel().press(key_e::reset);
  expect_blinking(flashing_lamp());
  panel().release(key_e::reset);
  expect_lamp(idle_lamp());
}

INSTANTIATE_TEST_SUITE_P(Models, ResetKeyOfModel, testing::Values(105, 106, 137));

/// On the models whose lamp the daemon lets blink by writing.
class RepeatedResetKey : public FrontPanelOfModel {};

TEST_P(RepeatedResetKey, StopsTheLamp) {
  start_with_keys();
  panel().press(key_e::reset);
  expect_blinking(flashing_lamp());
  panel().repeat(key_e::reset);
  const auto steady = panel().expect_led("steady", [](const led_t& led) { return led.period_ms == 0; });
  EXPECT_TRUE(steady) << steady.seen;
  panel().release(key_e::reset);
  expect_lamp({});
}

INSTANTIATE_TEST_SUITE_P(Models, RepeatedResetKey, testing::Values(105, 137));

class FactoryReset : public FrontPanelScenario {
 protected:
  /// Whether one script more than `starts` is started within the limit.
  bool starts_within(int starts, std::chrono::milliseconds limit) {
    return remote().expect_property("/sim/reset/starts", std::to_string(starts + 1), limit).came;
  }

  void hold_for_four_and_a_half_seconds();

  /// Holds the key until the script has started, which goes on.
  void hold_until_script_runs();
};

void FactoryReset::hold_for_four_and_a_half_seconds() {
  const auto pressed = test_clock_t::now();
  panel().press(key_e::reset);
  expect_blinking(green, reset_period);
  const auto held = std::chrono::duration_cast<std::chrono::milliseconds>(test_clock_t::now() - pressed);
  const bool early = starts_within(0, std::max(too_short_hold - held, std::chrono::milliseconds(0)));
  panel().release(key_e::reset);
  expect_lamp(blue);
  const bool heard_in_time = test_clock_t::now() - pressed < shortest_hold;
  const bool started = starts_within(0, rest_of_hold) || early;
  // On a busy machine the daemon may hear the release too late, and then rightly starts the script.
  EXPECT_FALSE(started && heard_in_time) << "the script was started before its time";
}

void FactoryReset::hold_until_script_runs() {
  const int starts = panel().reset_script_starts();
  panel().set_reset_script_behaviour("runs");
  panel().press(key_e::reset);
  expect_blinking(green, reset_period);
  expect_reset_script(starts + 1);
  expect_lamp(blue);
}

// The one scenario that waits for the real five seconds: what else a hold and a script can lead to, the tests of the
// daemon's parts show at once.
TEST_F(FactoryReset, TakesAHoldOfFiveSecondsAndOutlivesTheReleaseOfTheKey) {
  start_with_keys({"--verbose"});
  expect_lamp(blue);
  hold_for_four_and_a_half_seconds();
  hold_until_script_runs();
  panel().release(key_e::reset);
  // The keys are heard in order: the release was heard by then.
  panel().press(key_e::id);
  expect_blinking(green, id_mode_period);
  EXPECT_EQ(remote().value("/sim/reset/running"), "1");
  panel().end_reset_script("exits 3");
  expect_told("Factory reset process finished:  3");
  // What the daemon does at the end is done when it has heard something else.
  let_engine_run();
  EXPECT_EQ(panel().led(), (led_t{"green", 15, 1000})) << "id mode goes on";
  EXPECT_EQ(remote().log().find("Factory reset failed"), std::string::npos);
}

}  // namespace
}  // namespace scenarios
