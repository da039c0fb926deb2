#include "lnx/src/board_sensors.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "test_support/fake_udev.h"

namespace {

struct sensor_t {
  const char* name;
  bool (*read)(float& out_value);
  const char* path;
  /// What 34000 in the file is.
  float scaled;
};

constexpr const char* vccaux14 = "/sys/bus/iio/devices/iio:device0/in_voltage29_vccaux14_raw";

constexpr sensor_t sensors[] = {
    {"BoardTemperatureA", lnx::read_board_temperature_a, "/sys/class/hwmon/hwmon0/temp4_input", 34.0F},
    {"BoardTemperatureB", lnx::read_board_temperature_b, "/sys/class/hwmon/hwmon0/temp1_input", 34.0F},
    {"Vccaux14A", lnx::read_vccaux14_a, vccaux14, 11.9323731F},
    {"Vccaux14B", lnx::read_vccaux14_b, vccaux14, 4.90863508F},
    {"Vccaux15", lnx::read_vccaux15, "/sys/bus/iio/devices/iio:device0/in_voltage30_vccaux15_raw", 2.87068684F},
};

class BoardSensors : public testing::TestWithParam<sensor_t> {
 protected:
  void write(const std::string& content) { machine.write(GetParam().path, content); }

  void expect_value(float expected) {
    float value = -77;
    EXPECT_TRUE(GetParam().read(value));
    EXPECT_FLOAT_EQ(value, expected);
  }

  void expect_failure() {
    float value = -77;
    EXPECT_FALSE(GetParam().read(value));
    EXPECT_EQ(value, -77);
  }

  test_support::fake_udev_t machine;
};

INSTANTIATE_TEST_SUITE_P(, BoardSensors, testing::ValuesIn(sensors), [](const auto& test) { return test.param.name; });

}  // namespace

TEST_P(BoardSensors, ScalesWhatIsInTheFile) {
  write("34000\n");
  expect_value(GetParam().scaled);
  write("-3400");
  expect_value(GetParam().scaled / -10);
}

TEST_P(BoardSensors, ReadsTheFileAnewEachTime) {
  write("34000\n");
  expect_value(GetParam().scaled);
  write("68000\n");
  expect_value(GetParam().scaled * 2);
}

TEST_P(BoardSensors, TakesTheNumberAtTheStartOfTheFirstLine) {
  write(" 34000 and more\n1\n" + std::string(100'000, '9'));
  expect_value(GetParam().scaled);
}

TEST_P(BoardSensors, FailsWithoutTheFile) { expect_failure(); }

TEST_P(BoardSensors, FailsWithAnEmptyFile) {
  write("");
  expect_failure();
}

TEST_P(BoardSensors, ReadsZeroWhereThereIsNoNumber) {
  write("hot\n");
  expect_value(0);
  write("\n34000\n");
  expect_value(0);
}

TEST_P(BoardSensors, ReadsAnInfiniteValueWhereTheNumberIsTooLarge) {
  write(std::string(5000, '9'));
  expect_value(std::numeric_limits<float>::infinity());
}

TEST_P(BoardSensors, HandsOutWhatIsNoNumberByItsOwnWord) {
  write("nan\n");
  float value = -77;
  EXPECT_TRUE(GetParam().read(value));
  EXPECT_TRUE(std::isnan(value));
}
