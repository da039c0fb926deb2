// The LED of each model, with the coordinator that makes it.

#include "app/model_led.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

#include "app/test/front_panel_fixture.h"
#include "test_support/fake_ktm5030.h"
#include "test_support/qt_timers.h"
#include "test_support/stub_platform.h"

namespace {

using test_support::expire_timers_of;
using test_support::timer_intervals_of;
using testing::AllOf;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

using writes_t = std::vector<std::string>;

const writes_t blue_is_dark{"xk1-rgb-led:blue:status/pattern=\n", "xk1-rgb-led:blue:status/brightness=0"};
const writes_t green_is_lit{"xk1-rgb-led:green:id/pattern=\n", "xk1-rgb-led:green:id/brightness=15"};
const writes_t green_is_dark{"xk1-rgb-led:green:id/pattern=\n", "xk1-rgb-led:green:id/brightness=0"};
const writes_t blue_is_lit{"xk1-rgb-led:blue:status/pattern=\n", "xk1-rgb-led:blue:status/brightness=15"};

writes_t operator+(writes_t writes, const writes_t& more) {
  writes.insert(writes.end(), more.begin(), more.end());
  return writes;
}

class ModelLedTest : public FrontPanelTest {
 protected:
  void startWithSetting(const char* brightness) {
    std::ofstream("/var/rwfs2/led_brightness") << brightness;
    startModel("part-106");
  }

  // The flashing switches this file only, and its end leaves it dark. Timers of half a second may come in between.
  void idModeFlashes(const std::string& file) {
    tell(id_mode, "on");
    EXPECT_THAT(timer_intervals_of(led()), ElementsAre(500));
    expire_timers_of(led());
    EXPECT_THAT(files.take_writes(), AllOf(Not(IsEmpty()), Each(StartsWith(file + "="))));
    tell(id_mode, "off");
    EXPECT_THAT(timer_intervals_of(led()), IsEmpty());
    const auto writes = files.take_writes();
    ASSERT_FALSE(writes.empty());
    EXPECT_THAT(writes.back(), StartsWith(file + "="));
    EXPECT_TRUE(isDark(writes.back())) << writes.back();
  }
};

TEST_F(ModelLedTest, OnModel105IdModeFlashesThePwmOutput) {
  startModel("part-105");
  idModeFlashes("pwm-0/out_en");
}

TEST_F(ModelLedTest, OnModel106IdModeFlashesGreen) {
  startModel("part-106");
  tell(id_mode, "on");
  EXPECT_EQ(files.take_writes(),
            blue_is_dark + writes_t({"xk1-rgb-led:green:id/trigger=pattern", "xk1-rgb-led:green:id/repeat=-1",
                                     "xk1-rgb-led:green:id/pattern=15 500 15 0 0 500 0 0"}));
  tell(id_mode, "off");
  EXPECT_EQ(files.take_writes(), green_is_dark + green_is_dark + blue_is_lit);
}

class ModelLedOfAnyOther : public ModelLedTest, public testing::WithParamInterface<const char*> {};

TEST_P(ModelLedOfAnyOther, IdModeFlashesTheIdLed) {
  startModel(GetParam());
  idModeFlashes("id_led/brightness");
}

INSTANTIATE_TEST_SUITE_P(PartNumbers, ModelLedOfAnyOther, testing::Values("part-085", "part-137", "nobody's"));

TEST_F(ModelLedTest, OnModel106AGoodDesignWithAValidFormatIsGreen) {
  startModel("part-106");
  tell(design_status, "OK");
  EXPECT_EQ(files.take_writes(), green_is_dark + blue_is_lit);
  tell(valid_format, "true");
  EXPECT_EQ(files.take_writes(), blue_is_dark + green_is_lit);
  tell(valid_format, "false");
  EXPECT_EQ(files.take_writes(), green_is_dark + blue_is_lit);
}

TEST_F(ModelLedTest, OnModel106TheLightIsBlueBeforeTheVideoSideHearsOfAStop) {
  startModel("part-106");
  tell(valid_format, "true");
  tell(design_status, "OK");
  files.take_writes();
  log.clear();
  writes_t seen;
  bool video_side_knew = true;
  QObject::connect(control.get(), &vgn_control::VgnControl::designStatusChanged, control.get(), [&] {
    seen = files.take_writes();
    video_side_knew = log.said("vgn_streamer_proxy::set_design_stopped");
  });
  tell(engine_state, "Stopping");
  EXPECT_EQ(seen, green_is_dark + blue_is_lit);
  EXPECT_FALSE(video_side_knew);
}

TEST_F(ModelLedTest, OnModel106ADimSettingDimsTheStatusButNotIdMode) {
  startWithSetting("Dim");
  tell(design_status, "OK");
  EXPECT_EQ(files.take_writes(),
            green_is_dark + writes_t({"xk1-rgb-led:blue:status/pattern=\n", "xk1-rgb-led:blue:status/brightness=5"}));
  tell(id_mode, "on");
  EXPECT_THAT(files.take_writes(), Contains("xk1-rgb-led:green:id/pattern=15 500 15 0 0 500 0 0"));
}

TEST_F(ModelLedTest, OnModel106AnOffSettingDarkensTheStatusButNotIdMode) {
  startWithSetting("Off");
  tell(design_status, "OK");
  EXPECT_EQ(files.take_writes(), green_is_dark + blue_is_dark);
  tell(valid_format, "true");
  EXPECT_EQ(files.take_writes(), blue_is_dark + green_is_dark);
  tell(id_mode, "on");
  EXPECT_THAT(files.take_writes(), Contains("xk1-rgb-led:green:id/pattern=15 500 15 0 0 500 0 0"));
}

class ModelLedWithoutStatus : public ModelLedTest, public testing::WithParamInterface<const char*> {};

TEST_P(ModelLedWithoutStatus, DoesNotShowTheStatus) {
  startModel(GetParam());
  tell(valid_format, "true");
  tell(design_status, "OK");
  tell(engine_state, "Stopped");
  EXPECT_THAT(files.take_writes(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(PartNumbers, ModelLedWithoutStatus, testing::Values("part-105", "part-085"));

TEST_F(ModelLedTest, OnModel105AStopResetsTheChip) {
  test_support::fake_ktm5030_t chip(machine);
  startModel("part-105");
  tell(design_status, "OK");
  chip.set_mode_byte(1);
  const std::size_t asked = chip.requests().size();
  tell(design_status, "Faulted");
  EXPECT_EQ(chip.requests().size(), asked);
  tell(engine_state, "Stopped");
  EXPECT_EQ(chip.mode_byte(), 0);
  EXPECT_EQ(chip.requests().size(), asked + 1);
  control.reset();
}

TEST_F(ModelLedTest, OnModel105AStopResetsTheChipAlsoOfALaterCoordinator) {
  test_support::fake_ktm5030_t chip(machine);
  test_support::set_model("part-105");
  startBlocked(keys_path);
  control.reset();
  ::unsetenv("VGN_CONTROL_BLOCK");
  startModel("part-105");
  const std::size_t asked = chip.requests().size();
  tell(engine_state, "Stopped");
  EXPECT_EQ(chip.requests().size(), asked + 1);
  control.reset();
}

class ModelLedWithoutChip : public ModelLedTest, public testing::WithParamInterface<const char*> {};

TEST_P(ModelLedWithoutChip, LeavesTheChipAlone) {
  test_support::fake_ktm5030_t chip(machine);
  startModel(GetParam());
  tell(engine_state, "Stopped");
  EXPECT_THAT(chip.requests(), IsEmpty());
  control.reset();
}

INSTANTIATE_TEST_SUITE_P(PartNumbers, ModelLedWithoutChip, testing::Values("part-106", "part-085"));

TEST_F(ModelLedTest, BlockedItIsNotGreenWhateverTheDesign) {
  test_support::set_model("part-106");
  startBlocked();
  tell(valid_format, "true");
  tell(design_status, "OK");
  EXPECT_THAT(files.take_writes(), Not(Contains(green_is_lit.back())));
}

}  // namespace
