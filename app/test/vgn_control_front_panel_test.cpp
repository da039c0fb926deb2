// The coordinator with the LEDs and keys.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <linux/input.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "app/factory_reset_controller.h"
#include "app/test/front_panel_fixture.h"
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

const std::filesystem::path script_path = "/usr/zyl/www/cgi-bin/factory_reset_script";
constexpr const char* script_end_path = "/tmp/reset_end";

class VgnControlFrontPanelTest : public FrontPanelTest {
 protected:
  // A model whose LED the daemon switches itself.
  void startPlain() { startModel("part-085"); }

  void key(uint16_t code, int32_t value) const {
    const std::string bytes = test_support::key_bytes(code, value);
    ASSERT_EQ(::write(keys, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
  }

  FactoryResetController& factoryReset() const { return *control->findChild<FactoryResetController*>(); }

  // The hold of the reset key has lasted its five seconds.
  void passHold() const { expire_timers_of(factoryReset()); }

  bool flashesEvery(int interval) const {
    return test_support::qt_loop_until([&] { return timer_intervals_of(led()) == std::vector<int>{interval}; });
  }

  bool isDarkAgain() {
    return test_support::qt_loop_until([&] {
      const auto writes = files.take_writes();
      return !writes.empty() && isDark(writes.back()) && timer_intervals_of(led()).empty();
    });
  }

  // The script that runs until `endScript` tells it how to end.
  static void installScript() {
    std::filesystem::create_directories(script_path.parent_path());
    ASSERT_TRUE(::mkfifo(script_end_path, 0600) == 0 || errno == EEXIST);
    std::ofstream(script_path) << "#!/bin/sh\nread end <" << script_end_path << "\neval \"$end\"\n";
    std::filesystem::permissions(script_path, std::filesystem::perms::owner_all);
  }
  static void endScript(const char* end) { std::ofstream(script_end_path) << end << '\n'; }

  // The reset key has been held until the script runs.
  void runScript() {
    installScript();
    bool started = false;
    const QObject listener;
    QObject::connect(&factoryReset(), &FactoryResetController::resetStarted, &listener, [&] { started = true; });
    key(KEY_F2, 1);
    ASSERT_TRUE(flashesEvery(100));
    passHold();
    ASSERT_TRUE(test_support::qt_loop_until([&] { return started; }));
  }
};

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

TEST_F(VgnControlFrontPanelTest, TheLightStaysAsItIsWhenTheResetScriptHasEndedWhateverItsStatus) {
  startPlain();
  bool completed = false;
  QObject::connect(&factoryReset(), &FactoryResetController::resetCompleted, control.get(), [&] { completed = true; });
  for (const char* end : {"exit 0", "exit 3"}) {
    completed = false;
    runScript();
    ASSERT_TRUE(isDarkAgain());
    tell(id_mode, "on");
    endScript(end);
    EXPECT_TRUE(test_support::qt_loop_until([&] { return completed; }));
    EXPECT_THAT(timer_intervals_of(led()), ElementsAre(500)) << end;
    tell(id_mode, "off");
    ASSERT_TRUE(isDarkAgain());
  }
}

TEST_F(VgnControlFrontPanelTest, AResetScriptThatIsKilledStopsTheFlashingOfIdModeToo) {
  startPlain();
  runScript();
  ASSERT_TRUE(isDarkAgain());
  tell(id_mode, "on");
  EXPECT_THAT(timer_intervals_of(led()), ElementsAre(500));
  endScript("kill -9 $$");
  EXPECT_TRUE(isDarkAgain());
}

TEST_F(VgnControlFrontPanelTest, AHoldAfterTheResetScriptCouldNotRunFlashesAgain) {
  startPlain();
  key(KEY_F2, 1);
  ASSERT_TRUE(flashesEvery(100));
  passHold();
  ASSERT_TRUE(isDarkAgain());
  runScript();
  EXPECT_TRUE(isDarkAgain());
}

TEST_F(VgnControlFrontPanelTest, ARepeatOfTheResetKeyTurnsTheFlashingOffWhereThisProcessDoesIt) {
  startPlain();
  key(KEY_F2, 1);
  ASSERT_TRUE(flashesEvery(100));
  key(KEY_F2, 2);
  EXPECT_TRUE(test_support::qt_loop_until([&] { return timer_intervals_of(led()).empty(); }));
  EXPECT_THAT(timer_intervals_of(factoryReset()), ElementsAre(5000));
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

TEST_F(VgnControlFrontPanelTest, WithoutKeysItWarnsOnceAndServesTheRest) {
  test_support::set_model("part-085");
  start("");
  EXPECT_THAT(qt_log.lines(QtWarningMsg), Contains(StartsWith("Couldn't open the input device")).Times(1));
  control->idKeyPressed(true);
  EXPECT_TRUE(isWritten(id_mode, "on"));
}

}  // namespace
