#include "sim/led_panel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "sim/remote/child_process.h"
#include "sim/test/text_of_file.h"
#include "test_support/loop_until.h"
#include "zyl/event_loop.h"

using testing::HasSubstr;
using testing::Not;

namespace {

using texts_t = std::vector<std::pair<std::string, std::string>>;

const std::string blue = "/sys/class/leds/xk1-rgb-led:blue:status/";
const std::string green = "/sys/class/leds/xk1-rgb-led:green:id/";
const std::string pwm = "/proc/tarn/pwm-0/";

class LedPanel : public testing::Test {
 protected:
  void use(int model) { panel.emplace(loop.base(), testbed, tree, story, model); }

  /// A program writes to the files, one after the other.
  void write(const texts_t& texts) {
    std::vector<std::string> command{"sh", "-ec", "while [ $# -gt 0 ]; do printf %s \"$2\" >$1; shift 2; done", "sh"};
    for (const auto& [path, text] : texts) {
      command.insert(command.end(), {path, text});
    }
    sim::child_process_t shell(command, {testbed.environment(), ""});
    EXPECT_TRUE(test_support::loop_until(loop.base(), [&] {
      return !shell.running() && tree.value("/sim/led/written" + texts.back().first) == texts.back().second;
    }));
  }

  bool looks(const std::string& text) {
    return test_support::loop_until(loop.base(), [&] { return tree.value("/sim/led/looks") == text; });
  }

  std::string value(const char* name) const { return tree.value(std::string("/sim/led/") + name); }

  zyl::event_loop_t loop;
  sim::property_tree_t tree;
  sim::story_t story{"/tmp/story"};
  sim::testbed_t testbed;
  std::optional<sim::led_panel_t> panel;
};

}  // namespace

TEST_F(LedPanel, IsOffAtFirst) {
  use(106);
  EXPECT_EQ(value("looks"), "off");
  EXPECT_EQ(value("colour"), "off");
  EXPECT_EQ(value("brightness"), "0");
  EXPECT_EQ(value("blink"), "steady");
  EXPECT_EQ(value("changes"), "0");
  EXPECT_EQ(value("refused"), "0");
  EXPECT_EQ(value("driver"), "present");
}

TEST_F(LedPanel, TellsOfThePatternThatAProgramSets) {
  use(106);
  write({{green + "trigger", "pattern"}, {green + "repeat", "-1"}, {green + "pattern", "15 500 15 0 0 500 0 0"}});
  EXPECT_EQ(value("looks"), "green at 15, blinks every 1000 ms");
  EXPECT_EQ(value("colour"), "green");
  EXPECT_EQ(value("brightness"), "15");
  EXPECT_EQ(value("blink"), "1000");
  EXPECT_EQ(value("changes"), "1");
  EXPECT_THAT(sim::text_of_file("/tmp/story"), HasSubstr("\tpanel\tlight: green at 15, blinks every 1000 ms\n"));
}

TEST_F(LedPanel, GoesFromBlinkingToASteadyLight) {
  use(106);
  write({{green + "trigger", "pattern"}, {green + "pattern", "15 500 15 0 0 500 0 0"}});
  write({{green + "pattern", "\n"}, {green + "brightness", "0"}, {blue + "pattern", "\n"}, {blue + "brightness", "5"}});
  EXPECT_EQ(value("looks"), "blue at 5, steady");
  EXPECT_THAT(sim::text_of_file("/tmp/story"), Not(HasSubstr("refuses")));
  EXPECT_EQ(value("refused"), "0");
}

TEST_F(LedPanel, ACountedPatternEndsWithoutAWrite) {
  use(106);
  write({{blue + "trigger", "pattern"}, {blue + "repeat", "1"}, {blue + "pattern", "9 1 9 0 4 1 4 0"}});
  EXPECT_TRUE(looks("blue at 4, steady"));
}

TEST_F(LedPanel, TellsWhatTheDriverRefuses) {
  use(106);
  write({{blue + "pattern", "15 500 0 500"}});
  EXPECT_EQ(value("looks"), "off");
  EXPECT_THAT(sim::text_of_file("/tmp/story"), HasSubstr("blue:status/pattern refuses \"15 500 0 500\""));
  EXPECT_EQ(value("refused"), "1");
}

TEST_F(LedPanel, CountsWhatTheDriverRefuses) {
  use(106);
  write({{blue + "repeat", "-1"}, {blue + "trigger", "disco"}, {blue + "brightness", "\n"}});
  EXPECT_EQ(value("refused"), "3");
  write({{blue + "trigger", "pattern"}, {blue + "pattern", "15 500 15 0 0 500 0 0"}});
  EXPECT_EQ(value("changes"), "1");
  write({{blue + "pattern", "15 500"}});
  EXPECT_EQ(value("refused"), "4");
  EXPECT_EQ(value("changes"), "2");
}

TEST_F(LedPanel, ThePwmLampBlinksAndEndsByItself) {
  use(105);
  write({{pwm + "period", "0 500"}, {pwm + "value", "0 500"}, {pwm + "out_en", "255"}});
  EXPECT_EQ(value("looks"), "white at 255, steady");
  write({{pwm + "out_en", "0"}});
  write({{pwm + "out_en", "255"}});
  EXPECT_EQ(value("colour"), "white");
  EXPECT_NE(value("blink"), "steady");
  EXPECT_EQ(value("changes"), "3");
  EXPECT_TRUE(looks("white at 255, steady"));
}

TEST_F(LedPanel, ThePlainLampIsWhite) {
  use(137);
  write({{"/sys/class/leds/id_led/brightness", "255"}});
  EXPECT_EQ(value("looks"), "white at 255, steady");
  EXPECT_EQ(value("written/sys/class/leds/id_led/brightness"), "255");
}

TEST_F(LedPanel, ADriverThatIsNeitherThereNorMissingChangesNothing) {
  use(137);
  tree.set("/sim/led/driver", "absent");
  tree.set("/sim/led/driver", "loaded");
  EXPECT_EQ(value("driver"), "absent");
  EXPECT_FALSE(std::ifstream("/sys/class/leds/id_led/brightness").is_open());
  EXPECT_THAT(sim::text_of_file("/tmp/story"), HasSubstr("LED driver cannot be \"loaded\""));
}

TEST_F(LedPanel, TheDriverCanBeMissingAndCome) {
  use(137);
  const std::string file = "/sys/class/leds/id_led/brightness";
  write({{file, "128"}});
  tree.set("/sim/led/driver", "absent");
  EXPECT_FALSE(std::ifstream(file).is_open());
  EXPECT_EQ(value("looks"), "off");
  tree.set("/sim/led/driver", "present");
  EXPECT_TRUE(std::ifstream(file).is_open());
  write({{file, "255"}});
  EXPECT_EQ(value("looks"), "white at 255, steady");
}
