#include "sim/status_files.h"

#include <event2/event.h>
#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>

#include "lnx/src/board_sensors.h"
#include "lnx/src/fan.h"
#include "lnx/src/power_source.h"
#include "lnx/src/scaled_channel.h"
#include "lnx/src/xk_status.h"
#include "sim/testbed.h"
#include "zyl/event_loop.h"

namespace {

/// This process sees the board's files as a program on the appliance does.
class StatusFiles : public testing::Test {
 protected:
  /// Runs the loop until the property has the value; false after a generous time.
  bool becomes(const std::string& path, const std::string& value) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (tree.value(path) != value) {
      if (std::chrono::steady_clock::now() > limit) {
        return false;
      }
      const timeval pause{0, 1000};
      event_base_loopexit(loop.base(), &pause);
      event_base_dispatch(loop.base());
    }
    return true;
  }

  std::string content(const std::string& path) const {
    std::ifstream file(bed.root() + path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  static std::string told() {
    std::ostringstream text;
    text << std::ifstream("/tmp/story").rdbuf();
    return text.str();
  }

  zyl::event_loop_t loop;
  sim::property_tree_t tree;
  sim::story_t story{"/tmp/story"};
  sim::testbed_t bed;
  sim::status_files_t files{loop.base(), bed.root(), tree, story};
};

float value_of(bool (*read)(float& out_value)) {
  float value = -77;
  EXPECT_TRUE(read(value));
  return value;
}

std::string text_of(bool (*read)(std::string& out_text)) {
  std::string text = "none";
  EXPECT_TRUE(read(text));
  return text;
}

int32_t integer_of(bool (*read)(int32_t& out_value)) {
  int32_t value = -77;
  EXPECT_TRUE(read(value));
  return value;
}

}  // namespace

TEST_F(StatusFiles, AreThoseOfAWarmBoardForEveryReader) {
  EXPECT_FLOAT_EQ(value_of(lnx::read_board_temperature_a), 41.5F);
  EXPECT_FLOAT_EQ(value_of(lnx::read_board_temperature_b), 38.25F);
  EXPECT_NEAR(value_of(lnx::read_vccaux14_a), 12.0, 0.001);
  EXPECT_NEAR(value_of(lnx::read_vccaux14_b), 4.936, 0.001);
  EXPECT_NEAR(value_of(lnx::read_vccaux15), 3.3, 0.001);
  EXPECT_NEAR(value_of(lnx::read_pl_temperature), 46.96, 0.01);
  EXPECT_NEAR(value_of(lnx::read_ps_temperature), 48.90, 0.01);
  EXPECT_EQ(integer_of(lnx::read_fan_pwm), 128);
  EXPECT_EQ(integer_of(lnx::read_fan_speed), 3150);
  EXPECT_EQ(integer_of(lnx::read_fan_ramp_rate), 16);
}

TEST_F(StatusFiles, AreThoseOfABoardThatPowerOverEthernetFeeds) {
  EXPECT_EQ(text_of(lnx::read_aux_status), "0");
  EXPECT_EQ(text_of(lnx::read_poe_status), "1");
  EXPECT_EQ(text_of(lnx::read_poe_class), "4");
  EXPECT_EQ(text_of(lnx::read_board_id), "2");
  EXPECT_EQ(text_of(lnx::read_product_id), "1");
  uint32_t power_class = 0;
  EXPECT_TRUE(lnx::read_power_source(power_class));
  EXPECT_EQ(power_class, 3U);
}

TEST_F(StatusFiles, EachIsAPropertyThatTellsItsContent) {
  EXPECT_EQ(tree.below("/sim/hardware").size(), 19U);
  EXPECT_EQ(tree.value("/sim/hardware/temp4_input"), "41500");
  EXPECT_EQ(tree.value("/sim/hardware/pwm1_ramp_rate"), "16");
  EXPECT_EQ(tree.value("/sim/hardware/in_temp2_pl_temp_scale"), "7.771514892");
  EXPECT_EQ(content("/sys/class/hwmon/hwmon0/temp4_input"), "41500\n");
}

TEST_F(StatusFiles, HoldWhatThePropertyIsSetTo) {
  tree.set("/sim/hardware/temp4_input", "-12000");
  EXPECT_FLOAT_EQ(value_of(lnx::read_board_temperature_a), -12.0F);
  tree.set("/sim/hardware/board_id", "two\nlines");
  EXPECT_EQ(content("/sys/devices/platform/xk_status/board_id"), "two\nlines\n");
}

TEST_F(StatusFiles, CanBeEmptyAndCanBeTakenAwayAndReturn) {
  float degrees = 0;
  tree.set("/sim/hardware/temp1_input", "");
  EXPECT_TRUE(std::filesystem::exists(bed.root() + "/sys/class/hwmon/hwmon0/temp1_input"));
  EXPECT_FALSE(lnx::read_board_temperature_b(degrees));
  tree.set("/sim/hardware/temp1_input", "absent");
  tree.set("/sim/hardware/temp1_input", "absent");
  EXPECT_FALSE(std::filesystem::exists(bed.root() + "/sys/class/hwmon/hwmon0/temp1_input"));
  EXPECT_FALSE(lnx::read_board_temperature_b(degrees));
  tree.set("/sim/hardware/temp1_input", "20000");
  EXPECT_FLOAT_EQ(value_of(lnx::read_board_temperature_b), 20.0F);
}

TEST_F(StatusFiles, TellWhatAProgramWrites) {
  EXPECT_TRUE(lnx::write_fan_pwm(255));
  EXPECT_TRUE(becomes("/sim/hardware/pwm1", "255"));
  EXPECT_TRUE(lnx::write_fan_enable(0));
  EXPECT_TRUE(becomes("/sim/hardware/pwm1_enable", "0"));
  EXPECT_TRUE(lnx::write_fan_ramp_rate(7));
  EXPECT_TRUE(becomes("/sim/hardware/pwm1_ramp_rate", "7"));
  EXPECT_TRUE(told().ends_with("\thardware\tpwm1_ramp_rate is written: 7\n")) << told();
  EXPECT_EQ(integer_of(lnx::read_fan_pwm), 255);
}

TEST_F(StatusFiles, AreStillWatchedAfterTheSimulationHasChangedThem) {
  tree.set("/sim/hardware/pwm1", "10");
  EXPECT_EQ(integer_of(lnx::read_fan_pwm), 10);
  EXPECT_TRUE(lnx::write_fan_pwm(20));
  EXPECT_TRUE(becomes("/sim/hardware/pwm1", "20"));
}

TEST_F(StatusFiles, TellNothingOfAWriteThatTheSimulationHasReplaced) {
  EXPECT_TRUE(lnx::write_fan_pwm(20));
  tree.set("/sim/hardware/pwm1", "absent");
  EXPECT_TRUE(lnx::write_fan_ramp_rate(20));
  tree.set("/sim/hardware/pwm1_ramp_rate", "30");
  EXPECT_TRUE(lnx::write_fan_enable(2));
  EXPECT_TRUE(becomes("/sim/hardware/pwm1_enable", "2"));
  EXPECT_EQ(tree.value("/sim/hardware/pwm1"), "absent");
  EXPECT_EQ(tree.value("/sim/hardware/pwm1_ramp_rate"), "30");
  EXPECT_EQ(told().find("is written"), told().find("is written: 2\n")) << told();
}

TEST_F(StatusFiles, TellTheLastOfSeveralQuickWritesOnce) {
  EXPECT_TRUE(lnx::write_fan_pwm(20));
  EXPECT_TRUE(lnx::write_fan_pwm(30));
  EXPECT_TRUE(becomes("/sim/hardware/pwm1", "30"));
  EXPECT_EQ(told().find("is written"), told().find("is written: 30\n")) << told();
}

TEST_F(StatusFiles, TellAWriteOfWhatIsThereAlready) {
  EXPECT_TRUE(lnx::write_fan_pwm(128));
  EXPECT_TRUE(lnx::write_fan_enable(0));
  EXPECT_TRUE(becomes("/sim/hardware/pwm1_enable", "0"));
  EXPECT_NE(told().find("\thardware\tpwm1 is written: 128\n"), std::string::npos) << told();
}
