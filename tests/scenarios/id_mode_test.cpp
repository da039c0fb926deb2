#include "tests/scenarios/front_panel_scenario.h"

namespace scenarios {
namespace {

class IdModeOfModel : public FrontPanelOfModel {};

TEST_P(IdModeOfModel, StartsWithTheFirstPressOfTheKeyAndEndsWithTheSecond) {
  start_with_keys();
  panel().press(key_e::id);
  expect_id_mode("on");
  expect_blinking(flashing_lamp(), id_mode_period);
  panel().release(key_e::id);
  panel().press(key_e::id);
  expect_id_mode("off");
  expect_lamp(idle_lamp());
}

INSTANTIATE_TEST_SUITE_P(Models, IdModeOfModel, testing::Values(105, 106, 137));

class IdMode : public FrontPanelScenario {};

TEST_F(IdMode, IsNotTouchedByTheReleaseOfTheKey) {
  start_with_keys();
  panel().press(key_e::id);
  expect_blinking(green, id_mode_period);
  panel().release(key_e::id);
  // The keys are heard in order: what the release would have done is done by then.
  panel().press(key_e::reset);
  expect_blinking(green, reset_period);
  EXPECT_EQ(id_mode(), "on");
}

TEST_F(IdMode, IsShownByTheLampWhoeverSetsIt) {
  start_with_keys();
  expect_lamp(blue);
  set_id_mode("on");
  expect_blinking(green, id_mode_period);
  set_id_mode("off");
  expect_lamp(blue);
}

TEST_F(IdMode, IsShownByTheLampOnlyInItsOwnWords) {
  start_with_keys();
  set_id_mode("on");
  expect_blinking(green, id_mode_period);
  set_id_mode("OFF");
  set_id_mode("");
  let_engine_run();
  EXPECT_EQ(panel().led(), (led_t{"green", 15, 1000}));
}

TEST_F(IdMode, ThatSomebodyElseSetEndsWithAPressOfTheKey) {
  start_with_keys();
  set_id_mode("on");
  expect_blinking(green, id_mode_period);
  panel().press(key_e::id);
  expect_id_mode("off");
  expect_lamp(blue);
}

TEST_F(IdMode, ThatWasOnBeforeTheStartIsShownAndEndsWithAPressOfTheKey) {
  set_id_mode("on");
  start_with_keys();
  expect_blinking(green, id_mode_period);
  panel().press(key_e::id);
  expect_id_mode("off");
  expect_lamp(blue);
}

TEST_F(IdMode, IsToggledByEachRepeatOfAHeldKey) {
  start_with_keys();
  panel().press(key_e::id);
  expect_blinking(green, id_mode_period);
  panel().repeat(key_e::id);
  expect_lamp(blue);
  EXPECT_EQ(id_mode(), "off");
  panel().repeat(key_e::id);
  expect_blinking(green, id_mode_period);
  EXPECT_EQ(id_mode(), "on");
}

}  // namespace
}  // namespace scenarios
