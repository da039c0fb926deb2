#include "app/pattern_led.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "test_support/fake_led_files.h"
#include "test_support/fake_udev.h"
#include "test_support/qt_log_capture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using vgn_control::PatternLED;

/// The files of an LED "a:blue:b", which are there unless a test takes them away.
class PatternLEDTest : public testing::Test {
 protected:
  PatternLEDTest() {
    for (const char* attribute : {"trigger", "pattern", "repeat", "brightness"}) {
      files.make(path(attribute));
    }
  }

  static std::string path(const std::string& attribute) { return "/sys/class/leds/a:blue:b/" + attribute; }

  std::vector<std::string> warnings() const { return log.lines(QtWarningMsg); }

  test_support::qt_log_capture_t log;
  test_support::fake_udev_t machine;
  test_support::fake_led_files_t files{machine};
};

TEST_F(PatternLEDTest, TakesThePatternTrigger) {
  const PatternLED led("a:blue:b");
  EXPECT_THAT(files.take_writes(), ElementsAre("a:blue:b/trigger=pattern"));
  EXPECT_THAT(warnings(), IsEmpty());
}

TEST_F(PatternLEDTest, FlashesInTheKernel) {
  PatternLED led("a:blue:b");
  files.take_writes();
  led.start(100, 255);
  EXPECT_THAT(files.take_writes(), ElementsAre("a:blue:b/trigger=pattern", "a:blue:b/repeat=-1",
                                               "a:blue:b/pattern=255 100 255 0 0 100 0 0"));
}

TEST_F(PatternLEDTest, FlashesAtBrightness15UnlessToldOtherwise) {
  PatternLED led("a:blue:b");
  files.take_writes();
  led.startFlashing(500);
  EXPECT_THAT(files.take_writes(),
              ElementsAre("a:blue:b/trigger=pattern", "a:blue:b/repeat=-1", "a:blue:b/pattern=15 500 15 0 0 500 0 0"));
}

TEST_F(PatternLEDTest, FlashesOnWhenStartedAgain) {
  PatternLED led("a:blue:b");
  led.startFlashing(500);
  files.take_writes();
  led.startFlashing(500);
  EXPECT_THAT(files.take_writes(), testing::Contains("a:blue:b/pattern=15 500 15 0 0 500 0 0"));
}

TEST_F(PatternLEDTest, ClearsThePatternBeforeItGoesDark) {
  PatternLED led("a:blue:b");
  led.startFlashing(500);
  files.take_writes();
  led.stopFlashing();
  EXPECT_THAT(files.take_writes(), ElementsAre("a:blue:b/pattern=\n", "a:blue:b/brightness=0"));
}

TEST_F(PatternLEDTest, ClearsThePatternBeforeItShowsSteadyLight) {
  PatternLED led("a:blue:b");
  files.take_writes();
  led.setSteady(5);
  EXPECT_THAT(files.take_writes(), ElementsAre("a:blue:b/pattern=\n", "a:blue:b/brightness=5"));
}

TEST_F(PatternLEDTest, WarnsOfATriggerThatCannotBeOpened) {
  files.make_unwritable(path("trigger"));
  const PatternLED led("a:blue:b");
  EXPECT_THAT(warnings(), ElementsAre("Unable to open a:blue:b/trigger for writing!", "PWM LED 'a:blue:b' not found"));
}

TEST_F(PatternLEDTest, WarnsOfAKernelWithoutThePatternTrigger) {
  files.make_full(path("trigger"));
  const PatternLED led("a:blue:b");
  EXPECT_THAT(warnings(),
              ElementsAre("Error writing a:blue:b/trigger for led a:blue:b", "PWM LED 'a:blue:b' not found"));
}

TEST_F(PatternLEDTest, WarnsOfEachFileThatCannotBeWrittenAndWritesTheOthers) {
  PatternLED led("a:blue:b");
  files.take_writes();
  files.make_unwritable(path("trigger"));
  files.make_full(path("repeat"));
  led.startFlashing(500);
  EXPECT_THAT(warnings(), ElementsAre("Unable to open a:blue:b/trigger for writing!",
                                      "Error writing a:blue:b/repeat for led a:blue:b"));
  EXPECT_THAT(files.take_writes(), ElementsAre("a:blue:b/pattern=15 500 15 0 0 500 0 0"));
}

TEST_F(PatternLEDTest, IsSilentAboutAPatternThatCannotBeOpenedForItsEnd) {
  PatternLED led("a:blue:b");
  files.take_writes();
  files.make_unwritable(path("pattern"));
  led.stopFlashing();
  EXPECT_THAT(warnings(), IsEmpty());
  EXPECT_THAT(files.take_writes(), ElementsAre("a:blue:b/brightness=0"));
}

TEST_F(PatternLEDTest, WarnsOfAPatternThatRefusesItsEnd) {
  PatternLED led("a:blue:b");
  files.make_full(path("pattern"));
  led.stopFlashing();
  EXPECT_THAT(warnings(), ElementsAre("Error writing a:blue:b/pattern for led a:blue:b"));
}

TEST_F(PatternLEDTest, WarnsOfABrightnessThatCannotBeOpened) {
  PatternLED led("a:blue:b");
  files.make_unwritable(path("brightness"));
  led.stopFlashing();
  EXPECT_THAT(warnings(), ElementsAre("Unable to open a:blue:b/brightness for writing!"));
}

TEST_F(PatternLEDTest, WithoutAnyFileItWarnsAndCanBeUsed) {
  PatternLED led("absent");
  led.startFlashing(500);
  led.stopFlashing();
  EXPECT_THAT(
      warnings(),
      ElementsAre("Unable to open absent/trigger for writing!", "PWM LED 'absent' not found",
                  "Unable to open absent/trigger for writing!", "Unable to open absent/repeat for writing!",
                  "Unable to open absent/pattern for writing!", "Unable to open absent/brightness for writing!"));
}

TEST_F(PatternLEDTest, WarnsInTheDefaultCategory) {
  files.make_unwritable(path("trigger"));
  PatternLED led("a:blue:b");
  files.make_full(path("brightness"));
  led.stopFlashing();
  EXPECT_EQ(warnings().size(), 3U);
  EXPECT_THAT(log.categories(), ElementsAre("default"));
}

}  // namespace
