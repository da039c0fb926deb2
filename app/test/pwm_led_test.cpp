#include "app/pwm_led.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_support/fake_led_files.h"
#include "test_support/fake_udev.h"
#include "test_support/qt_log_capture.h"
#include "test_support/qt_timers.h"

namespace {

using test_support::expire_timers_of;
using test_support::timer_intervals_of;
using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using vgn_control::PWM_LED;

constexpr const char* out_en = "/proc/tarn/pwm-0/out_en";
constexpr const char* period = "/proc/tarn/pwm-0/period";
constexpr const char* value = "/proc/tarn/pwm-0/value";
constexpr const char* no_class_file = "LED file /sys/class/leds/pwm-0/brightness doesn't exist";
constexpr const char* not_found = "PWM LED 'pwm-0' not found";

/// The files of the driver, which are there unless a test takes them away.
class PWM_LEDTest : public testing::Test {
 protected:
  PWM_LEDTest() {
    files.make(out_en);
    files.make(period);
    files.make(value);
  }

  // What was warned of, but for the file in the LED class that no PWM output has.
  std::vector<std::string> warnings() const {
    auto lines = log.lines(QtWarningMsg);
    std::erase(lines, no_class_file);
    return lines;
  }

  test_support::qt_log_capture_t log;
  test_support::fake_udev_t machine;
  test_support::fake_led_files_t files{machine};
};

TEST_F(PWM_LEDTest, SetsTheDriverUpOnce) {
  PWM_LED led("pwm-0");
  EXPECT_THAT(files.take_writes(), ElementsAre("pwm-0/period=0 500", "pwm-0/value=0 500"));
  EXPECT_TRUE(led.exists());
  EXPECT_THAT(files.take_writes(), IsEmpty());
  EXPECT_THAT(log.lines(QtWarningMsg), ElementsAre(no_class_file));
}

TEST_F(PWM_LEDTest, IsSwitchedByTheOutput) {
  PWM_LED led("pwm-0");
  files.take_writes();
  led.setState(true);
  EXPECT_THAT(files.take_writes(), ElementsAre("pwm-0/out_en=255"));
  led.setState(false);
  EXPECT_THAT(files.take_writes(), ElementsAre("pwm-0/out_en=0"));
  EXPECT_THAT(warnings(), IsEmpty());
}

TEST_F(PWM_LEDTest, FlashesByATimer) {
  PWM_LED led("pwm-0");
  files.take_writes();
  led.startFlashing(100);
  EXPECT_THAT(timer_intervals_of(led), ElementsAre(100));
  expire_timers_of(led);
  EXPECT_THAT(files.take_writes(), ElementsAre("pwm-0/out_en=255"));
  led.stopFlashing();
  EXPECT_THAT(timer_intervals_of(led), IsEmpty());
  EXPECT_THAT(files.take_writes(), ElementsAre("pwm-0/out_en=0"));
}

TEST_F(PWM_LEDTest, ASecondStartOfTheFlashingStopsIt) {
  PWM_LED led("pwm-0");
  led.startFlashing(100);
  led.startFlashing(100);
  EXPECT_THAT(timer_intervals_of(led), IsEmpty());
}

TEST_F(PWM_LEDTest, IsNotThereWhileAnyOfItsFilesIsMissing) {
  for (const char* missing : {out_en, period, value}) {
    files.remove(missing);
    PWM_LED led("pwm-0");
    EXPECT_FALSE(led.exists()) << missing;
    EXPECT_THAT(files.take_writes(), IsEmpty()) << missing;
    files.make(missing);
  }
  EXPECT_EQ(warnings().size(), 6U);
  EXPECT_THAT(warnings(), Each(std::string(not_found)));
}

TEST_F(PWM_LEDTest, TellsOfItsFileInTheLedClassBeforeTheDriver) {
  files.remove(value);
  const PWM_LED led("pwm-0");
  EXPECT_THAT(log.lines(QtWarningMsg), ElementsAre(no_class_file, not_found));
}

TEST_F(PWM_LEDTest, AFileInTheLedClassDoesNotMakeUpForTheDriver) {
  files.make("/sys/class/leds/pwm-0/brightness");
  files.remove(value);
  PWM_LED led("pwm-0");
  EXPECT_FALSE(led.exists());
  EXPECT_THAT(log.lines(QtWarningMsg), ElementsAre(not_found, not_found));
}

TEST_F(PWM_LEDTest, PicksUpADriverThatComesLateAtItsNextUse) {
  files.remove(period);
  PWM_LED led("pwm-0");
  led.setState(true);
  EXPECT_THAT(warnings(), ElementsAre(not_found, not_found, "Unable to open /proc/tarn/pwm-0/out_en for writing!"));
  files.make(period);
  led.setState(true);
  EXPECT_THAT(files.take_writes(), ElementsAre("pwm-0/period=0 500", "pwm-0/value=0 500", "pwm-0/out_en=255"));
  EXPECT_EQ(warnings().size(), 3U);
}

TEST_F(PWM_LEDTest, WarnsOfAPeriodOrValueThatCannotBeOpenedAndGoesOn) {
  files.make_unwritable(period);
  files.make_unwritable(value);
  PWM_LED led("pwm-0");
  EXPECT_THAT(warnings(),
              ElementsAre("Unable to open pwm-0 period for writing!", "Unable to open pwm-0 value for writing!"));
  led.setState(true);
  EXPECT_THAT(files.take_writes(), ElementsAre("pwm-0/out_en=255"));
}

TEST_F(PWM_LEDTest, WarnsOfAPeriodOrValueThatIsRefusedAndGoesOn) {
  files.make_full(period);
  files.make_full(value);
  PWM_LED led("pwm-0");
  EXPECT_THAT(warnings(), ElementsAre("Unable to set pwm-0 period", "Unable to set pwm-0 value"));
  EXPECT_TRUE(led.exists());
}

TEST_F(PWM_LEDTest, WarnsOfAnOutputThatRefusesItsState) {
  PWM_LED led("pwm-0");
  files.make_full(out_en);
  led.setState(true);
  EXPECT_THAT(warnings(), ElementsAre("Unable to set /proc/tarn/pwm-0/out_en value"));
}

TEST_F(PWM_LEDTest, WarnsInTheDefaultCategory) {
  files.remove(out_en);
  PWM_LED led("pwm-0");
  files.make(out_en);
  files.make_unwritable(period);
  files.make_full(value);
  EXPECT_TRUE(led.exists());
  EXPECT_THAT(warnings(),
              ElementsAre(not_found, "Unable to open pwm-0 period for writing!", "Unable to set pwm-0 value"));
  EXPECT_THAT(log.categories(), ElementsAre("default"));
}

}  // namespace
