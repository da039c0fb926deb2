#include <chrono>
#include <string>

#include "tests/scenarios/front_panel_scenario.h"

// The hold that starts the script is five seconds by a coarse timer, a twentieth more or less; no test can be quicker.

namespace scenarios {
namespace {

using test_clock_t = std::chrono::steady_clock;

constexpr std::chrono::milliseconds shortest_hold{4750};
constexpr std::chrono::milliseconds too_short_hold{4500};
/// More than is left of it then.
constexpr std::chrono::milliseconds rest_of_hold{1000};

class FactoryResetOfModel : public FrontPanelOfModel {};

TEST_P(FactoryResetOfModel, StartsWhenTheKeyIsHeldAndTheLampSaysSoUntilThen) {
  panel().set_reset_script_behaviour("runs");
  start_with_keys();
  panel().press(key_e::reset);
  expect_blinking(flashing_lamp());
  expect_reset_script(1);
  expect_lamp(idle_lamp());
  panel().release(key_e::reset);
  // The keys are heard in order: the release was heard by then.
  panel().press(key_e::id);
  expect_id_mode("on");
  EXPECT_EQ(remote().value("/sim/reset/running"), "1");
  EXPECT_EQ(panel().reset_script_starts(), 1);
}

INSTANTIATE_TEST_SUITE_P(Models, FactoryResetOfModel, testing::Values(105, 106, 137));

class FactoryReset : public FrontPanelScenario {
 protected:
  struct hold_t {
    bool started = false;       ///< while the key was held
    bool surely_short = false;  ///< whether the daemon has heard the release before the script could be due
  };

  /// Whether one script more than `starts` is started within the limit.
  bool starts_within(int starts, std::chrono::milliseconds limit) {
    return remote().expect_property("/sim/reset/starts", std::to_string(starts + 1), limit).came;
  }

  hold_t hold_for_four_and_a_half_seconds();

  /// Holds the key until the script has started, and enters id mode.
  void start_script_and_id_mode();
};

FactoryReset::hold_t FactoryReset::hold_for_four_and_a_half_seconds() {
  const int starts = panel().reset_script_starts();
  const auto pressed = test_clock_t::now();
  panel().press(key_e::reset);
  const bool started = starts_within(starts, too_short_hold);
  panel().release(key_e::reset);
  expect_lamp(blue);
  return {started, test_clock_t::now() - pressed < shortest_hold};
}

void FactoryReset::start_script_and_id_mode() {
  panel().set_reset_script_behaviour("runs");
  start_with_keys({"--verbose"});
  const auto started = panel().hold(key_e::reset, [this] { return panel().expect_reset_script(1); });
  EXPECT_TRUE(started) << started.seen;
  panel().press(key_e::id);
  expect_blinking(green, id_mode_period);
}

TEST_F(FactoryReset, DoesNotStartWhenTheKeyIsReleasedAfterFourAndAHalfSeconds) {
  start_with_keys();
  expect_lamp(blue);
  hold_t hold;
  // On a busy machine a release may come too late to say anything.
  for (int attempt = 0; attempt < 5 && !hold.surely_short && !HasFailure(); ++attempt) {
    hold = hold_for_four_and_a_half_seconds();
    EXPECT_FALSE(hold.started && hold.surely_short) << "the script was started before its time";
  }
  ASSERT_TRUE(hold.surely_short) << "this machine is too busy to release a key in time";
  EXPECT_FALSE(starts_within(panel().reset_script_starts(), rest_of_hold)) << "in spite of the release";
}

/// On the models whose lamp the daemon lets blink by writing: its changes tell how long the key is held.
class RepeatedFactoryReset : public FrontPanelOfModel {};

TEST_P(RepeatedFactoryReset, IsPutOffByARepeatOfTheKeyWhichStopsTheLampToo) {
  start_with_keys();
  panel().press(key_e::reset);
  expect_changes_of_light(15);
  const auto repeated = test_clock_t::now();
  panel().repeat(key_e::reset);
  const auto steady = panel().expect_led("steady", [](const led_t& led) { return led.period_ms == 0; });
  EXPECT_TRUE(steady) << steady.seen;
  EXPECT_EQ(panel().reset_script_starts(), 0);
  expect_reset_script(1);
  EXPECT_GE(test_clock_t::now() - repeated, shortest_hold) << "the repeat starts the hold anew";
  expect_lamp({});
}

INSTANTIATE_TEST_SUITE_P(Models, RepeatedFactoryReset, testing::Values(105, 137));

TEST_F(FactoryReset, WithoutAScriptIsGivenUpAndTheNextOneWorks) {
  panel().set_reset_script(false);
  expect_property("/sim/reset/script", "missing");
  start_with_keys();
  panel().press(key_e::reset);
  expect_blinking(green, reset_period);
  expect_told("Factory reset failed");
  expect_lamp(blue);
  EXPECT_EQ(panel().reset_script_starts(), 0);
  panel().set_reset_script(true);
  panel().press(key_e::reset);
  expect_blinking(green, reset_period);
  expect_reset_script(1);
  expect_lamp(blue);
}

TEST_F(FactoryReset, WhoseScriptIsKilledIsToldAndStopsTheLamp) {
  start_script_and_id_mode();
  panel().end_reset_script("dies");
  expect_told("Factory reset failed");
  expect_lamp(blue);
  EXPECT_EQ(id_mode(), "on");
}

class EndedFactoryReset : public FactoryReset, public testing::WithParamInterface<std::string> {};

TEST_P(EndedFactoryReset, LeavesTheLampAsItIs) {
  start_script_and_id_mode();
  panel().end_reset_script(GetParam());
  expect_told("Factory reset process finished");
  // What the daemon does at the end is done when it has heard something else.
  let_engine_run();
  EXPECT_EQ(panel().led(), (led_t{"green", 15, 1000})) << "id mode goes on";
  EXPECT_EQ(remote().log().find("Factory reset failed"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(Statuses, EndedFactoryReset, testing::Values("exits 0", "exits 3"));

}  // namespace
}  // namespace scenarios
