#include "app/rgb_led.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "test_support/fake_led_files.h"
#include "test_support/fake_udev.h"
#include "test_support/qt_log_capture.h"
#include "test_support/qt_loop_until.h"
#include "test_support/qt_methods.h"

namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::IsEmpty;
using vgn_control::RGB_LED;

constexpr const char* setting = "/var/rwfs2/led_brightness";

using writes_t = std::vector<std::string>;

const writes_t green_is_dark{"green/pattern=\n", "green/brightness=0"};
const writes_t blue_is_dark{"blue/pattern=\n", "blue/brightness=0"};

writes_t greenIs(const char* brightness) { return {"green/pattern=\n", std::string("green/brightness=") + brightness}; }
writes_t blueIs(const char* brightness) { return {"blue/pattern=\n", std::string("blue/brightness=") + brightness}; }

writes_t operator+(writes_t writes, const writes_t& more) {
  writes.insert(writes.end(), more.begin(), more.end());
  return writes;
}

/// The files of two colours, "blue" and "green". There is no brightness setting at the start.
class RGB_LEDTest : public testing::Test {
 protected:
  RGB_LEDTest() {
    for (const std::string led : {"blue", "green"}) {
      for (const char* attribute : {"trigger", "pattern", "repeat", "brightness"}) {
        files.make("/sys/class/leds/" + led + "/" + attribute);
      }
    }
  }

  void set(const std::string& text) { std::ofstream(setting) << text; }

  // Green, steady.
  void showGoodDesign(RGB_LED& led) {
    led.validFormatChanged("true");
    led.designStatusChanged("OK");
    files.take_writes();
  }

  bool shows(const writes_t& expected) {
    writes_t seen;
    return test_support::qt_loop_until([&] {
      seen = seen + files.take_writes();
      return seen.size() >= expected.size() && std::equal(expected.rbegin(), expected.rend(), seen.rbegin());
    });
  }

  std::vector<std::string> warnings() const { return log.lines(QtWarningMsg); }

  test_support::qt_log_capture_t log;
  test_support::fake_udev_t machine;
  test_support::fake_led_files_t files{machine};
};

TEST_F(RGB_LEDTest, StartsBlueAndBright) {
  const RGB_LED led("blue", "green", 15, 5);
  EXPECT_EQ(files.take_writes(),
            writes_t({"blue/trigger=pattern", "green/trigger=pattern"}) + green_is_dark + blueIs("15"));
  EXPECT_THAT(warnings(), IsEmpty());
}

TEST_F(RGB_LEDTest, HasItsOwnSlotsInOrder) {
  EXPECT_THAT(
      test_support::own_methods_of(RGB_LED::staticMetaObject),
      ElementsAre("designStatusChanged(QByteArray)", "validFormatChanged(QByteArray)", "brightness_changed(QString)"));
}

TEST_F(RGB_LEDTest, IsGreenWithAGoodDesignAndAValidFormat) {
  RGB_LED led("blue", "green", 15, 5);
  files.take_writes();
  led.designStatusChanged("OK");
  EXPECT_EQ(files.take_writes(), green_is_dark + blueIs("15"));
  led.validFormatChanged("true");
  EXPECT_EQ(files.take_writes(), blue_is_dark + greenIs("15"));
}

TEST_F(RGB_LEDTest, TurnsBlueAtOnceWithoutAValidFormat) {
  RGB_LED led("blue", "green", 15, 5);
  showGoodDesign(led);
  led.validFormatChanged("false");
  EXPECT_EQ(files.take_writes(), green_is_dark + blueIs("15"));
}

TEST_F(RGB_LEDTest, TurnsBlueWithoutAGoodDesign) {
  for (const char* status : {"Stopped", "ok", ""}) {
    RGB_LED led("blue", "green", 15, 5);
    showGoodDesign(led);
    led.designStatusChanged(status);
    EXPECT_EQ(files.take_writes(), green_is_dark + blueIs("15")) << status;
  }
}

TEST_F(RGB_LEDTest, OnlyTheExactWordIsAValidFormat) {
  RGB_LED led("blue", "green", 15, 5);
  led.designStatusChanged("OK");
  for (const char* value : {"1", "True", ""}) {
    files.take_writes();
    led.validFormatChanged(value);
    EXPECT_EQ(files.take_writes(), green_is_dark + blueIs("15")) << value;
  }
}

TEST_F(RGB_LEDTest, FlashesGreen) {
  RGB_LED led("blue", "green", 15, 5);
  files.take_writes();
  led.startFlashing(500);
  EXPECT_EQ(files.take_writes(), blue_is_dark + writes_t({"green/trigger=pattern", "green/repeat=-1",
                                                          "green/pattern=15 500 15 0 0 500 0 0"}));
}

TEST_F(RGB_LEDTest, ShowsTheLevelsThatItIsGiven) {
  set("Bright");
  RGB_LED led("blue", "green", 200, 7);
  EXPECT_THAT(files.take_writes(), testing::Contains("blue/brightness=200"));
  led.startFlashing(500);
  EXPECT_THAT(files.take_writes(), testing::Contains("green/pattern=200 500 200 0 0 500 0 0"));
  led.stopFlashing();
  EXPECT_EQ(files.take_writes(), green_is_dark + green_is_dark + blueIs("200"));
  set("Dim");
  led.brightness_changed(setting);
  EXPECT_EQ(files.take_writes(), green_is_dark + blueIs("7"));
  led.startFlashing(500);
  EXPECT_THAT(files.take_writes(), testing::Contains("green/pattern=200 500 200 0 0 500 0 0"));
}

TEST_F(RGB_LEDTest, FlashesOnWhenStartedAgain) {
  RGB_LED led("blue", "green", 15, 5);
  led.startFlashing(500);
  files.take_writes();
  led.startFlashing(100);
  EXPECT_EQ(files.take_writes(), blue_is_dark + writes_t({"green/trigger=pattern", "green/repeat=-1",
                                                          "green/pattern=15 100 15 0 0 100 0 0"}));
}

TEST_F(RGB_LEDTest, AStatusThatChangesDuringTheFlashingShowsAfterIt) {
  RGB_LED led("blue", "green", 15, 5);
  led.startFlashing(500);
  files.take_writes();
  led.designStatusChanged("OK");
  led.validFormatChanged("true");
  EXPECT_THAT(files.take_writes(), IsEmpty());
  led.stopFlashing();
  // Green goes dark first; its files show their latest texts.
  EXPECT_EQ(files.take_writes(), greenIs("15") + blue_is_dark + greenIs("15"));
}

TEST_F(RGB_LEDTest, TurnsBackToBlueAfterTheFlashing) {
  RGB_LED led("blue", "green", 15, 5);
  led.startFlashing(500);
  files.take_writes();
  led.stopFlashing();
  EXPECT_EQ(files.take_writes(), green_is_dark + green_is_dark + blueIs("15"));
}

TEST_F(RGB_LEDTest, ReadsTheBrightnessSettingAtTheStart) {
  set("Dim");
  const RGB_LED led("blue", "green", 15, 5);
  EXPECT_EQ(files.take_writes(),
            writes_t({"blue/trigger=pattern", "green/trigger=pattern"}) + green_is_dark + blueIs("5"));
  EXPECT_THAT(log.lines(QtInfoMsg), IsEmpty());
}

TEST_F(RGB_LEDTest, FollowsTheBrightnessSetting) {
  set("Bright");
  const RGB_LED led("blue", "green", 15, 5);
  files.take_writes();
  set("Dim");
  EXPECT_TRUE(shows(green_is_dark + blueIs("5")));
  set("Off");
  EXPECT_TRUE(shows(green_is_dark + blueIs("0")));
  set("Bright");
  EXPECT_TRUE(shows(green_is_dark + blueIs("15")));
}

TEST_F(RGB_LEDTest, ASettingOfTwoBytesIsBright) {
  set("Of");
  RGB_LED led("blue", "green", 15, 5);
  showGoodDesign(led);
  led.validFormatChanged("true");
  EXPECT_EQ(files.take_writes(), blue_is_dark + greenIs("15"));
}

TEST_F(RGB_LEDTest, ALongSettingCountsByItsFirstBytes) {
  set("Dim" + std::string(1000, 'x'));
  const RGB_LED led("blue", "green", 15, 5);
  EXPECT_THAT(files.take_writes(), testing::Contains("blue/brightness=5"));
}

TEST_F(RGB_LEDTest, OffDarkensTheSteadyLightButNotTheFlashing) {
  set("Off");
  RGB_LED led("blue", "green", 15, 5);
  showGoodDesign(led);
  led.designStatusChanged("OK");
  EXPECT_EQ(files.take_writes(), blue_is_dark + greenIs("0"));
  led.startFlashing(500);
  EXPECT_THAT(files.take_writes(), testing::Contains("green/pattern=15 500 15 0 0 500 0 0"));
}

TEST_F(RGB_LEDTest, ASettingThatChangesDuringTheFlashingShowsAfterIt) {
  RGB_LED led("blue", "green", 15, 5);
  led.startFlashing(500);
  files.take_writes();
  set("Dim");
  led.brightness_changed(setting);
  EXPECT_THAT(files.take_writes(), IsEmpty());
  led.stopFlashing();
  EXPECT_EQ(files.take_writes(), green_is_dark + green_is_dark + blueIs("5"));
}

TEST_F(RGB_LEDTest, MakesTheSettingsFileEmpty) {
  const RGB_LED led("blue", "green", 15, 5);
  EXPECT_TRUE(fs::is_regular_file(setting));
  EXPECT_EQ(fs::file_size(setting), 0U);
  EXPECT_THAT(log.lines(QtInfoMsg), ElementsAre("File /var/rwfs2/led_brightness didn't exist and was created."));
}

TEST_F(RGB_LEDTest, FollowsTheSettingsFileThatItMade) {
  const RGB_LED led("blue", "green", 15, 5);
  files.take_writes();
  set("Dim");
  EXPECT_TRUE(shows(green_is_dark + blueIs("5")));
}

TEST_F(RGB_LEDTest, LeavesAPresentSettingAlone) {
  set("Dim");
  const RGB_LED led("blue", "green", 15, 5);
  std::ifstream file(setting);
  EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}), "Dim");
}

TEST_F(RGB_LEDTest, IsBrightWhereTheSettingsFileCannotBeMade) {
  fs::remove("/var/rwfs2");
  const RGB_LED led("blue", "green", 15, 5);
  EXPECT_THAT(log.lines(QtCriticalMsg),
              ElementsAre("File /var/rwfs2/led_brightness doesn't exist and can't be created!"));
  EXPECT_THAT(log.lines(QtInfoMsg), IsEmpty());
  EXPECT_THAT(warnings(), ElementsAre("Unable to open /var/rwfs2/led_brightness for reading!"));
  EXPECT_THAT(files.take_writes(), testing::Contains("blue/brightness=15"));
}

TEST_F(RGB_LEDTest, IsBrightWhereTheSettingCannotBeRead) {
  fs::create_directory(setting);
  const RGB_LED led("blue", "green", 15, 5);
  EXPECT_THAT(log.lines(QtCriticalMsg), IsEmpty());
  EXPECT_THAT(warnings(), ElementsAre("Unable to open /var/rwfs2/led_brightness for reading!"));
  EXPECT_THAT(files.take_writes(), testing::Contains("blue/brightness=15"));
}

TEST_F(RGB_LEDTest, TurnsBrightWhenTheSettingGoesAway) {
  set("Dim");
  const RGB_LED led("blue", "green", 15, 5);
  files.take_writes();
  fs::remove(setting);
  EXPECT_TRUE(shows(green_is_dark + blueIs("15")));
  EXPECT_THAT(warnings(), testing::Contains("Unable to open /var/rwfs2/led_brightness for reading!"));
}

TEST_F(RGB_LEDTest, WithoutItsColoursItWarnsAndCanBeUsed) {
  RGB_LED led("one", "two", 15, 5);
  led.startFlashing(500);
  led.stopFlashing();
  led.validFormatChanged("true");
  EXPECT_THAT(warnings(), testing::IsSupersetOf({"PWM LED 'one' not found", "PWM LED 'two' not found",
                                                 "Unable to open two/pattern for writing!",
                                                 "Unable to open one/brightness for writing!"}));
  EXPECT_THAT(files.take_writes(), IsEmpty());
}

TEST_F(RGB_LEDTest, SpeaksInTheDefaultCategory) {
  { const RGB_LED led("blue", "green", 15, 5); }
  EXPECT_EQ(log.lines(QtInfoMsg).size(), 1U);
  fs::remove_all("/var/rwfs2");
  const RGB_LED led("blue", "green", 15, 5);
  EXPECT_EQ(log.lines(QtCriticalMsg).size(), 1U);
  EXPECT_EQ(warnings().size(), 1U);
  EXPECT_THAT(log.categories(), ElementsAre("default"));
}

}  // namespace
