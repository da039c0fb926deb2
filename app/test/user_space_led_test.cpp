#include "app/user_space_led.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QAbstractEventDispatcher>
#include <string>
#include <vector>

#include "test_support/fake_led_files.h"
#include "test_support/fake_udev.h"
#include "test_support/qt_log_capture.h"
#include "test_support/qt_timers.h"

namespace {

using test_support::expire_timers_of;
using test_support::timer_intervals_of;
using testing::ElementsAre;
using testing::IsEmpty;
using vgn_control::UserSpaceLED;

constexpr const char* brightness = "/sys/class/leds/id_led/brightness";
constexpr const char* cannot_open = "Unable to open /sys/class/leds/id_led/brightness for writing!";
constexpr const char* cannot_restore =
    "Can't restore previous state for /sys/class/leds/id_led/brightness: it wasn't saved before";

/// The files of the LED, which are there unless a test takes them away.
class UserSpaceLEDTest : public testing::Test {
 protected:
  UserSpaceLEDTest() { files.make(brightness); }

  std::vector<std::string> warnings() const { return log.lines(QtWarningMsg); }

  test_support::qt_log_capture_t log;
  test_support::fake_udev_t machine;
  test_support::fake_led_files_t files{machine};
};

TEST_F(UserSpaceLEDTest, IsSwitchedToFullBrightnessAndOff) {
  UserSpaceLED led("id_led");
  led.setState(true);
  EXPECT_THAT(files.take_writes(), ElementsAre("id_led/brightness=255"));
  led.setState(false);
  EXPECT_THAT(files.take_writes(), ElementsAre("id_led/brightness=0"));
  EXPECT_THAT(warnings(), IsEmpty());
}

TEST_F(UserSpaceLEDTest, TakesLevelsBetween) {
  UserSpaceLED led("id_led");
  EXPECT_TRUE(led.setValue(0.5));
  EXPECT_THAT(files.take_writes(), ElementsAre("id_led/brightness=128"));
}

TEST_F(UserSpaceLEDTest, IsOnWithALevelTooFaintToShow) {
  UserSpaceLED led("id_led");
  EXPECT_TRUE(led.setValue(0.001));
  EXPECT_THAT(files.take_writes(), ElementsAre("id_led/brightness=0"));
  led.startFlashing(500);
  expire_timers_of(led);
  EXPECT_THAT(files.take_writes(), ElementsAre("id_led/brightness=0"));
  expire_timers_of(led);
  EXPECT_THAT(files.take_writes(), ElementsAre("id_led/brightness=255"));
}

TEST_F(UserSpaceLEDTest, WritesAStateThatItIsInAgain) {
  UserSpaceLED led("id_led");
  led.setState(false);
  led.setState(false);
  EXPECT_THAT(files.take_writes(), ElementsAre("id_led/brightness=0", "id_led/brightness=0"));
}

TEST_F(UserSpaceLEDTest, IsLeftAloneByItsConstruction) {
  const UserSpaceLED led("id_led", true);
  EXPECT_THAT(files.take_writes(), IsEmpty());
}

TEST_F(UserSpaceLEDTest, FlashesFromTheStateThatItIsInAfterOneInterval) {
  UserSpaceLED led("id_led");
  led.startFlashing(500);
  EXPECT_THAT(files.take_writes(), IsEmpty());
  expire_timers_of(led);
  EXPECT_THAT(files.take_writes(), ElementsAre("id_led/brightness=255"));
  expire_timers_of(led);
  EXPECT_THAT(files.take_writes(), ElementsAre("id_led/brightness=0"));
}

TEST_F(UserSpaceLEDTest, FlashingBeginsWithDarknessWhenItIsLit) {
  UserSpaceLED led("id_led");
  led.setState(true);
  files.take_writes();
  led.startFlashing(500);
  expire_timers_of(led);
  EXPECT_THAT(files.take_writes(), ElementsAre("id_led/brightness=0"));
}

TEST_F(UserSpaceLEDTest, TimesTheFlashingByOneCoarseTimerOfTheInterval) {
  UserSpaceLED led("id_led");
  led.startFlashing(500);
  const auto timers = QAbstractEventDispatcher::instance()->registeredTimers(&led);
  ASSERT_EQ(timers.size(), 1);
  EXPECT_EQ(timers[0].interval, 500);
  EXPECT_EQ(timers[0].timerType, Qt::CoarseTimer);
}

TEST_F(UserSpaceLEDTest, ASecondStartOfTheFlashingStopsItAndLeavesTheLightAsItIs) {
  UserSpaceLED led("id_led");
  led.startFlashing(500);
  expire_timers_of(led);
  files.take_writes();
  led.startFlashing(500);
  EXPECT_THAT(timer_intervals_of(led), IsEmpty());
  EXPECT_THAT(files.take_writes(), IsEmpty());
}

TEST_F(UserSpaceLEDTest, AThirdStartOfTheFlashingStartsItAgainWithItsOwnInterval) {
  UserSpaceLED led("id_led");
  led.startFlashing(500);
  led.startFlashing(500);
  led.startFlashing(100);
  EXPECT_THAT(timer_intervals_of(led), ElementsAre(100));
}

TEST_F(UserSpaceLEDTest, IsOffAfterTheFlashing) {
  UserSpaceLED led("id_led");
  led.startFlashing(500);
  expire_timers_of(led);
  files.take_writes();
  led.stopFlashing();
  EXPECT_THAT(timer_intervals_of(led), IsEmpty());
  EXPECT_THAT(files.take_writes(), ElementsAre("id_led/brightness=0"));
}

TEST_F(UserSpaceLEDTest, IsSwitchedOffByAStopWithoutFlashing) {
  UserSpaceLED led("id_led");
  led.stopFlashing();
  EXPECT_THAT(files.take_writes(), ElementsAre("id_led/brightness=0"));
}

TEST_F(UserSpaceLEDTest, FlashesAgainAfterAStop) {
  UserSpaceLED led("id_led");
  led.startFlashing(500);
  led.stopFlashing();
  led.startFlashing(100);
  EXPECT_THAT(timer_intervals_of(led), ElementsAre(100));
}

TEST_F(UserSpaceLEDTest, WarnsOfAMissingFileAndCanBeUsedWhenItComes) {
  files.remove(brightness);
  UserSpaceLED led("id_led");
  EXPECT_THAT(warnings(), ElementsAre("LED file /sys/class/leds/id_led/brightness doesn't exist"));
  EXPECT_FALSE(led.exists());
  files.make(brightness);
  EXPECT_TRUE(led.exists());
  led.setState(true);
  EXPECT_THAT(files.take_writes(), ElementsAre("id_led/brightness=255"));
  EXPECT_EQ(warnings().size(), 1U);
}

TEST_F(UserSpaceLEDTest, WritesNothingWithoutItsFile) {
  files.remove(brightness);
  UserSpaceLED led("id_led");
  EXPECT_FALSE(led.setValue(1.0));
  led.setState(true);
  EXPECT_THAT(warnings(),
              ElementsAre("LED file /sys/class/leds/id_led/brightness doesn't exist", cannot_open, cannot_open));
  EXPECT_FALSE(led.exists());
}

TEST_F(UserSpaceLEDTest, ExistsForEverOnceItWasSeen) {
  UserSpaceLED led("id_led");
  files.remove(brightness);
  EXPECT_TRUE(led.exists());
}

TEST_F(UserSpaceLEDTest, AFileThatCannotBeOpenedLeavesTheStateAlone) {
  UserSpaceLED led("id_led");
  files.make_unwritable(brightness);
  EXPECT_FALSE(led.setValue(1.0));
  EXPECT_THAT(warnings(), ElementsAre(cannot_open));
  files.make(brightness);
  led.startFlashing(500);
  expire_timers_of(led);
  EXPECT_THAT(files.take_writes(), ElementsAre("id_led/brightness=255"));
}

TEST_F(UserSpaceLEDTest, WarnsOfAFailedWriteAndCountsItAsDone) {
  UserSpaceLED led("id_led");
  files.make_full(brightness);
  EXPECT_FALSE(led.setValue(1.0));
  EXPECT_THAT(warnings(), ElementsAre("Unable to set /sys/class/leds/id_led/brightness value"));
  files.make(brightness);
  led.startFlashing(500);
  expire_timers_of(led);
  EXPECT_THAT(files.take_writes(), ElementsAre("id_led/brightness=0"));
}

TEST_F(UserSpaceLEDTest, GoesBackToASavedState) {
  UserSpaceLED led("id_led");
  led.setState(true);
  led.saveState();
  led.setState(false);
  files.take_writes();
  led.restoreState();
  EXPECT_THAT(files.take_writes(), ElementsAre("id_led/brightness=255"));
  EXPECT_THAT(warnings(), IsEmpty());
}

TEST_F(UserSpaceLEDTest, ASavedStateIsGoodForOneWayBack) {
  UserSpaceLED led("id_led");
  led.saveState();
  led.setState(true);
  files.take_writes();
  led.restoreState();
  EXPECT_THAT(files.take_writes(), ElementsAre("id_led/brightness=0"));
  led.restoreState();
  EXPECT_THAT(files.take_writes(), IsEmpty());
  EXPECT_THAT(warnings(), ElementsAre(cannot_restore));
}

TEST_F(UserSpaceLEDTest, WarnsOfAWayBackToAStateThatWasNotSaved) {
  UserSpaceLED led("id_led");
  led.restoreState();
  EXPECT_THAT(files.take_writes(), IsEmpty());
  EXPECT_THAT(warnings(), ElementsAre(cannot_restore));
}

TEST_F(UserSpaceLEDTest, WarnsInTheDefaultCategory) {
  files.remove(brightness);
  UserSpaceLED led("id_led");
  led.setState(true);
  led.restoreState();
  files.make_full(brightness);
  led.setState(true);
  EXPECT_EQ(warnings().size(), 4U);
  EXPECT_THAT(log.categories(), ElementsAre("default"));
}

}  // namespace
