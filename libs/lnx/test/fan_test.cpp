#include "lnx/src/fan.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>

#include "test_support/fake_udev.h"
#include "test_support/opened_files.h"

namespace {

using testing::ElementsAre;

const std::string folder = "/sys/class/hwmon/hwmon0/";

struct reader_t {
  const char* test_name;
  bool (*read)(int32_t& out_value);
  const char* name;
};

constexpr reader_t readers[] = {
    {"Pwm", lnx::read_fan_pwm, "pwm1"},
    {"Speed", lnx::read_fan_speed, "fan1_input"},
    {"RampRate", lnx::read_fan_ramp_rate, "custom/pwm1_ramp_rate"},
};

class FanReader : public testing::TestWithParam<reader_t> {
 protected:
  void write(const std::string& content) { machine.write(folder + GetParam().name, content); }

  void expect_value(int32_t expected) {
    int32_t value = -77;
    EXPECT_TRUE(GetParam().read(value));
    EXPECT_EQ(value, expected);
  }

  void expect_failure() {
    int32_t value = -77;
    EXPECT_FALSE(GetParam().read(value));
    EXPECT_EQ(value, -77);
  }

  test_support::fake_udev_t machine;
};

INSTANTIATE_TEST_SUITE_P(, FanReader, testing::ValuesIn(readers),
                         [](const auto& test) { return test.param.test_name; });

/// Values of eight bits.
class SmallFanReader : public FanReader {};

INSTANTIATE_TEST_SUITE_P(, SmallFanReader, testing::Values(readers[0], readers[2]),
                         [](const auto& test) { return test.param.test_name; });

struct writer_t {
  const char* test_name;
  bool (*write)(int32_t value);
  const char* name;
};

constexpr writer_t writers[] = {
    {"Enable", lnx::write_fan_enable, "pwm1_enable"},
    {"Pwm", lnx::write_fan_pwm, "pwm1"},
    {"RampRate", lnx::write_fan_ramp_rate, "custom/pwm1_ramp_rate"},
};

class FanWriter : public testing::TestWithParam<writer_t> {
 protected:
  std::string content() const {
    std::ifstream file(machine.place(folder + GetParam().name));
    return {std::istreambuf_iterator<char>(file), {}};
  }

  test_support::fake_udev_t machine;
};

INSTANTIATE_TEST_SUITE_P(, FanWriter, testing::ValuesIn(writers),
                         [](const auto& test) { return test.param.test_name; });

}  // namespace

TEST_P(FanReader, ReadsTheIntegerAnewEachTime) {
  write("0\n");
  expect_value(0);
  write("255\n");
  expect_value(255);
}

TEST_P(FanReader, CutsOffAFraction) {
  write("127.9\n");
  expect_value(127);
}

TEST_P(FanReader, HandsOutANegativeValueAsItIs) {
  write("-1\n");
  expect_value(-1);
  write("-1e39\n");
  expect_value(std::numeric_limits<int32_t>::min());
}

TEST_P(FanReader, FailsWithoutTheFile) { expect_failure(); }

TEST_P(FanReader, FailsWithAnEmptyFile) {
  write("");
  expect_failure();
}

TEST_P(FanReader, ReadsZeroWhereThereIsNoNumber) {
  write("fast\n");
  expect_value(0);
  write("\n128\n");
  expect_value(0);
  write("nan\n");
  expect_value(0);
}

TEST_P(FanReader, TakesTheNumberAtTheStartOfALargeFile) {
  write("12 " + std::string(1'000'000, '9') + "\n34\n");
  expect_value(12);
}

TEST_P(SmallFanReader, FailsFrom256On) {
  for (const char* content : {"256\n", "300\n", "1e39\n", "inf\n"}) {
    write(content);
    expect_failure();
  }
  write("255.9\n");
  expect_value(255);
}

TEST(FanSpeed, MayBeAnyInteger) {
  test_support::fake_udev_t machine;
  int32_t speed = 0;
  machine.write(folder + "fan1_input", "4200\n");
  EXPECT_TRUE(lnx::read_fan_speed(speed));
  EXPECT_EQ(speed, 4200);
  machine.write(folder + "fan1_input", "99999999999\n");
  EXPECT_TRUE(lnx::read_fan_speed(speed));
  EXPECT_EQ(speed, std::numeric_limits<int32_t>::max());
}

TEST(FanEnable, IsReadAndTrueInEveryCase) {
  test_support::fake_udev_t machine;
  EXPECT_TRUE(lnx::read_fan_enable());
  const std::string large(1'000'000, '9');
  for (const std::string& content : {std::string("1\n"), std::string("0\n"), std::string(), std::string("on\n"),
                                     std::string("300\n"), std::string("1e39\n"), std::string("nan\n"), large}) {
    machine.write(folder + "pwm1_enable", content);
    const test_support::opened_files_t opened(machine.place(folder));
    EXPECT_TRUE(lnx::read_fan_enable()) << content.substr(0, 10);
    EXPECT_THAT(opened.take(), ElementsAre("pwm1_enable")) << content.substr(0, 10);
  }
}

TEST_P(FanWriter, WritesDecimalDigitsInPlaceOfTheContent) {
  machine.write(folder + GetParam().name, "a longer content\n");
  EXPECT_TRUE(GetParam().write(128));
  EXPECT_EQ(content(), "128");
  EXPECT_TRUE(GetParam().write(7));
  EXPECT_EQ(content(), "7");
}

TEST_P(FanWriter, WritesAnyNumber) {
  machine.write(folder + GetParam().name, "");
  EXPECT_TRUE(GetParam().write(-1));
  EXPECT_EQ(content(), "-1");
  EXPECT_TRUE(GetParam().write(1'000'000));
  EXPECT_EQ(content(), "1000000");
}

TEST_P(FanWriter, FailsWithoutTheDevice) { EXPECT_FALSE(GetParam().write(1)); }
