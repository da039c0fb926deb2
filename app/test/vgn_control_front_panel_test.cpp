// The coordinator with the LEDs and keys of the models.

#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/input.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "app/factory_reset_controller.h"
#include "app/led.h"
#include "app/test/vgn_control_fixture.h"
#include "test_support/fake_ktm5030.h"
#include "test_support/fake_led_files.h"
#include "test_support/fake_udev.h"
#include "test_support/key_bytes.h"
#include "test_support/qt_loop_until.h"
#include "test_support/qt_timers.h"
#include "test_support/stub_platform.h"

namespace {

using test_support::expire_timers_of;
using test_support::timer_intervals_of;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;
using vgn_control::FactoryResetController;
using vgn_control::LED;

constexpr const char* keys_path = "/tmp/keys";
const std::filesystem::path script_path = "/usr/zyl/www/cgi-bin/factory_reset_script";
constexpr const char* script_end_path = "/tmp/reset_end";

using writes_t = std::vector<std::string>;

const writes_t blue_is_dark{"xk1-rgb-led:blue:status/pattern=\n", "xk1-rgb-led:blue:status/brightness=0"};
const writes_t green_is_lit{"xk1-rgb-led:green:id/pattern=\n", "xk1-rgb-led:green:id/brightness=15"};
const writes_t green_is_dark{"xk1-rgb-led:green:id/pattern=\n", "xk1-rgb-led:green:id/brightness=0"};
const writes_t blue_is_lit{"xk1-rgb-led:blue:status/pattern=\n", "xk1-rgb-led:blue:status/brightness=15"};

writes_t operator+(writes_t writes, const writes_t& more) {
  writes.insert(writes.end(), more.begin(), more.end());
  return writes;
}

/// A base, because the machine must be there before the threads of the doubles and after those of the coordinator.
struct PanelFiles {
  PanelFiles() {
    files.make("/sys/class/leds/id_led/brightness");
    for (const std::string colour : {"blue:status", "green:id"}) {
      for (const char* attribute : {"trigger", "pattern", "repeat", "brightness"}) {
        files.make("/sys/class/leds/xk1-rgb-led:" + colour + "/" + attribute);
      }
    }
    for (const std::string attribute : {"out_en", "period", "value"}) {
      files.make("/proc/tarn/pwm-0/" + attribute);
    }
  }

  test_support::fake_udev_t machine;
  test_support::fake_led_files_t files{machine};
};

/// A coordinator before the front panels of all models, with keys that the test presses.
class VgnControlFrontPanelTest : public PanelFiles, public VgnControlTest {
 protected:
  VgnControlFrontPanelTest() {
    ::mkfifo(keys_path, 0600);
    keys = ::open(keys_path, O_RDWR | O_NONBLOCK | O_CLOEXEC);
  }

  void TearDown() override {
    VgnControlTest::TearDown();
    ::close(keys);
  }

  void startModel(const char* part_number) {
    test_support::set_model(part_number);
    start(keys_path);
    files.take_writes();
  }

  // With a white LED that is switched by hand.
  void startPlain() { startModel("part-085"); }

  void key(uint16_t code, int32_t value) const {
    const std::string bytes = test_support::key_bytes(code, value);
    ASSERT_EQ(::write(keys, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }

  LED& led() const { return *control->findChild<LED*>(); }
  FactoryResetController& factoryReset() const { return *control->findChild<FactoryResetController*>(); }

  // The hold of the reset key has lasted its five seconds.
  void passHold() const { expire_timers_of(factoryReset()); }

  bool flashesEvery(int interval) const {
    return test_support::qt_loop_until([&] { return timer_intervals_of(led()) == std::vector<int>{interval}; });
  }

  bool isDarkAgain() {
    return test_support::qt_loop_until([&] {
      const auto writes = files.take_writes();
      return !writes.empty() && writes.back() == "id_led/brightness=0" && timer_intervals_of(led()).empty();
    });
  }

  // The script that runs until `endScript`.
  static void installScript() {
    std::filesystem::create_directories(script_path.parent_path());
    ASSERT_EQ(::mkfifo(script_end_path, 0600), 0);
    std::ofstream(script_path) << "#!/bin/sh\nread status <" << script_end_path << "\nexit $status\n";
    std::filesystem::permissions(script_path, std::filesystem::perms::owner_all);
  }
  static void endScript() { std::ofstream(script_end_path) << "0\n"; }

  // The reset key has been held until the script runs.
  void runScript() {
    installScript();
    bool started = false;
    QObject::connect(&factoryReset(), &FactoryResetController::resetStarted, control.get(), [&] { started = true; });
    key(KEY_F2, 1);
    ASSERT_TRUE(flashesEvery(100));
    passHold();
    ASSERT_TRUE(test_support::qt_loop_until([&] { return started; }));
  }

  int keys = -1;
};

TEST_F(VgnControlFrontPanelTest, OnModel105IdModeFlashesThePwmOutput) {
  startModel("part-105");
  tell(id_mode, "on");
  EXPECT_THAT(timer_intervals_of(led()), ElementsAre(500));
  expire_timers_of(led());
  EXPECT_THAT(files.take_writes(), ElementsAre("pwm-0/out_en=255"));
  tell(id_mode, "off");
  EXPECT_THAT(timer_intervals_of(led()), IsEmpty());
  EXPECT_THAT(files.take_writes(), ElementsAre("pwm-0/out_en=0"));
}

TEST_F(VgnControlFrontPanelTest, OnModel106IdModeFlashesGreen) {
  startModel("part-106");
  tell(id_mode, "on");
  EXPECT_EQ(files.take_writes(),
            blue_is_dark + writes_t({"xk1-rgb-led:green:id/trigger=pattern", "xk1-rgb-led:green:id/repeat=-1",
                                     "xk1-rgb-led:green:id/pattern=15 500 15 0 0 500 0 0"}));
  tell(id_mode, "off");
  EXPECT_EQ(files.take_writes(), green_is_dark + green_is_dark + blue_is_lit);
}

TEST_F(VgnControlFrontPanelTest, OnAnyOtherModelIdModeFlashesTheIdLed) {
  for (const char* part_number : {"part-085", "part-137", "nobody's"}) {
    startModel(part_number);
    tell(id_mode, "on");
    expire_timers_of(led());
    EXPECT_THAT(files.take_writes(), ElementsAre("id_led/brightness=255")) << part_number;
    tell(id_mode, "off");
    EXPECT_THAT(files.take_writes(), ElementsAre("id_led/brightness=0")) << part_number;
    control.reset();
  }
}

TEST_F(VgnControlFrontPanelTest, OtherWordsLeaveIdModeAsItIs) {
  startPlain();
  for (const char* value : {"ON", "1", "", "on "}) {
    tell(id_mode, value);
    EXPECT_THAT(timer_intervals_of(led()), IsEmpty()) << value;
  }
  tell(id_mode, "on");
  for (const char* value : {"OFF", "0", "", "off "}) {
    tell(id_mode, value);
    EXPECT_THAT(timer_intervals_of(led()), ElementsAre(500)) << value;
  }
  EXPECT_THAT(files.take_writes(), IsEmpty());
}

TEST_F(VgnControlFrontPanelTest, TheLedFollowsThePropertyAndNotTheKey) {
  startPlain();
  key(KEY_F1, 1);
  EXPECT_TRUE(isWritten(id_mode, "on"));
  EXPECT_THAT(timer_intervals_of(led()), IsEmpty());
  tell(id_mode, "on");
  EXPECT_THAT(timer_intervals_of(led()), ElementsAre(500));
  key(KEY_F1, 0);
  key(KEY_F1, 1);
  EXPECT_TRUE(isWritten(id_mode, "off"));
  EXPECT_THAT(timer_intervals_of(led()), ElementsAre(500));
  tell(id_mode, "off");
  EXPECT_THAT(timer_intervals_of(led()), IsEmpty());
}

TEST_F(VgnControlFrontPanelTest, TheEndOfIdModeStopsTheFlashing) {
  startPlain();
  key(KEY_F1, 1);
  EXPECT_TRUE(isWritten(id_mode, "on"));
  tell(id_mode, "on");
  expireIdMode();
  EXPECT_TRUE(isWritten(id_mode, "off"));
  tell(id_mode, "off");
  EXPECT_TRUE(isDarkAgain());
}

TEST_F(VgnControlFrontPanelTest, ASecondOnTurnsTheFlashingOffWhereThisProcessDoesIt) {
  startPlain();
  tell(id_mode, "on");
  tell(id_mode, "on");
  EXPECT_THAT(timer_intervals_of(led()), IsEmpty());
}

TEST_F(VgnControlFrontPanelTest, HoldingTheResetKeyFlashesFastUntilItsRelease) {
  startPlain();
  key(KEY_F2, 1);
  EXPECT_TRUE(flashesEvery(100));
  key(KEY_F2, 0);
  EXPECT_TRUE(isDarkAgain());
}

TEST_F(VgnControlFrontPanelTest, OnModel106HoldingTheResetKeyFlashesGreenFast) {
  startModel("part-106");
  key(KEY_F2, 1);
  const std::string fast = "xk1-rgb-led:green:id/pattern=15 100 15 0 0 100 0 0";
  EXPECT_TRUE(test_support::qt_loop_until([&] {
    const auto writes = files.take_writes();
    return !writes.empty() && writes.back() == fast;
  }));
}

TEST_F(VgnControlFrontPanelTest, TheFlashingEndsWhenTheResetScriptRuns) {
  startPlain();
  runScript();
  EXPECT_TRUE(isDarkAgain());
}

TEST_F(VgnControlFrontPanelTest, TheFlashingEndsWhenTheResetScriptCannotRun) {
  startPlain();
  key(KEY_F2, 1);
  ASSERT_TRUE(flashesEvery(100));
  passHold();
  EXPECT_TRUE(isDarkAgain());
  EXPECT_FALSE(qt_log.lines(QtCriticalMsg).empty());
}

TEST_F(VgnControlFrontPanelTest, AReleaseWhileTheResetScriptRunsStopsTheFlashingAgain) {
  startPlain();
  runScript();
  ASSERT_TRUE(isDarkAgain());
  tell(id_mode, "on");
  key(KEY_F2, 0);
  EXPECT_TRUE(isDarkAgain());
}

TEST_F(VgnControlFrontPanelTest, TheLightStaysAsItIsWhenTheResetScriptHasEnded) {
  startPlain();
  runScript();
  ASSERT_TRUE(isDarkAgain());
  tell(id_mode, "on");
  bool completed = false;
  QObject::connect(&factoryReset(), &FactoryResetController::resetCompleted, control.get(), [&] { completed = true; });
  endScript();
  EXPECT_TRUE(test_support::qt_loop_until([&] { return completed; }));
  EXPECT_THAT(timer_intervals_of(led()), ElementsAre(500));
  EXPECT_THAT(files.take_writes(), IsEmpty());
}

TEST_F(VgnControlFrontPanelTest, OnModel106AGoodDesignWithAValidFormatIsGreen) {
  startModel("part-106");
  tell(design_status, "OK");
  EXPECT_EQ(files.take_writes(), green_is_dark + blue_is_lit);
  tell(valid_format, "true");
  EXPECT_EQ(files.take_writes(), blue_is_dark + green_is_lit);
  tell(valid_format, "false");
  EXPECT_EQ(files.take_writes(), green_is_dark + blue_is_lit);
}

TEST_F(VgnControlFrontPanelTest, OnModel106TheLightIsBlueBeforeTheVideoSideHearsOfAStop) {
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

TEST_F(VgnControlFrontPanelTest, OnOtherModelsTheStatusIsNotShown) {
  for (const char* part_number : {"part-105", "part-085"}) {
    startModel(part_number);
    tell(valid_format, "true");
    tell(design_status, "OK");
    tell(engine_state, "Stopped");
    EXPECT_THAT(files.take_writes(), IsEmpty()) << part_number;
    control.reset();
  }
}

TEST_F(VgnControlFrontPanelTest, OnModel105AStopResetsTheChip) {
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

TEST_F(VgnControlFrontPanelTest, OnModel105TheChipIsAskedOnceAStopAlsoByALaterCoordinator) {
  test_support::fake_ktm5030_t chip(machine);
  startModel("part-105");
  control.reset();
  startModel("part-105");
  const std::size_t asked = chip.requests().size();
  tell(engine_state, "Stopped");
  EXPECT_EQ(chip.requests().size(), asked + 1);
  control.reset();
}

TEST_F(VgnControlFrontPanelTest, OnOtherModelsTheChipIsLeftAlone) {
  test_support::fake_ktm5030_t chip(machine);
  for (const char* part_number : {"part-106", "part-085"}) {
    startModel(part_number);
    tell(engine_state, "Stopped");
    control.reset();
  }
  EXPECT_THAT(chip.requests(), IsEmpty());
}

TEST_F(VgnControlFrontPanelTest, BlockedItStillServesLedKeysAndReset) {
  test_support::set_model("part-085");
  startBlocked(keys_path);
  tell(id_mode, "on");
  EXPECT_THAT(timer_intervals_of(led()), ElementsAre(500));
  key(KEY_F1, 1);
  EXPECT_TRUE(isWritten(id_mode, "off"));
  tell(id_mode, "off");
  EXPECT_TRUE(isDarkAgain());
  runScript();
  EXPECT_TRUE(isDarkAgain());
}

TEST_F(VgnControlFrontPanelTest, BlockedItIsNotGreenWhateverTheDesign) {
  test_support::set_model("part-106");
  startBlocked();
  tell(valid_format, "true");
  tell(design_status, "OK");
  EXPECT_THAT(files.take_writes(), testing::Not(Contains(green_is_lit.back())));
}

TEST_F(VgnControlFrontPanelTest, WithoutKeysItWarnsOnceAndServesTheRest) {
  test_support::set_model("part-085");
  start("");
  EXPECT_THAT(qt_log.lines(QtWarningMsg), Contains(StartsWith("Couldn't open the input device")).Times(1));
  control->idKeyPressed(true);
  EXPECT_TRUE(isWritten(id_mode, "on"));
}

}  // namespace
