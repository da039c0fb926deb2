#include "lnx/src/scaled_channel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <string>
#include <tuple>

#include "test_support/fake_udev.h"
#include "test_support/opened_files.h"

namespace {

using testing::ElementsAre;

const std::string folder = "/sys/bus/iio/devices/iio:device0/";

struct channel_t {
  const char* test_name;
  bool (*read)(float& out_value);
  const char* name;
};

constexpr channel_t channels[] = {
    {"PlTemperature", lnx::read_pl_temperature, "in_temp2_pl_temp"},
    {"PsTemperature", lnx::read_ps_temperature, "in_temp0_ps_temp"},
};

class ScaledChannel : public testing::TestWithParam<channel_t> {
 protected:
  ScaledChannel() { write("27000\n", "-20000\n", "6.5\n"); }

  void write(const std::string& raw, const std::string& offset, const std::string& scale) {
    machine.write(path("_raw"), raw);
    machine.write(path("_offset"), offset);
    machine.write(path("_scale"), scale);
  }

  void remove(const char* suffix) { std::filesystem::remove(machine.place(path(suffix))); }

  static std::string path(const char* suffix) { return folder + name(suffix); }
  static std::string name(const char* suffix) { return std::string(GetParam().name) + suffix; }

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

INSTANTIATE_TEST_SUITE_P(, ScaledChannel, testing::ValuesIn(channels),
                         [](const auto& test) { return test.param.test_name; });

}  // namespace

TEST_P(ScaledChannel, AddsTheOffsetThenScalesToThousandths) {
  expect_value(45.5F);
  write("-1000", "500", "2.0");
  expect_value(-1.0F);
}

TEST_P(ScaledChannel, AsksForOffsetRawAndScaleInThisOrder) {
  const test_support::opened_files_t opened(machine.place(folder));
  expect_value(45.5F);
  EXPECT_THAT(opened.take(), ElementsAre(name("_offset"), name("_raw"), name("_scale")));
}

TEST_P(ScaledChannel, GivesUpAtTheFirstFileThatIsMissing) {
  const test_support::opened_files_t opened(machine.place(folder));
  remove("_scale");
  expect_failure();
  EXPECT_THAT(opened.take(), ElementsAre(name("_offset"), name("_raw")));
  remove("_raw");
  expect_failure();
  EXPECT_THAT(opened.take(), ElementsAre(name("_offset")));
  remove("_offset");
  expect_failure();
  EXPECT_THAT(opened.take(), ElementsAre());
}

TEST_P(ScaledChannel, GivesUpAtTheFirstFileThatIsEmpty) {
  const test_support::opened_files_t opened(machine.place(folder));
  write("", "", "6.5\n");
  static_cast<void>(opened.take());
  expect_failure();
  EXPECT_THAT(opened.take(), ElementsAre(name("_offset")));
  write("", "-20000\n", "6.5\n");
  expect_failure();
  write("27000\n", "-20000\n", "");
  expect_failure();
}

TEST_P(ScaledChannel, TakesALineThatIsNoNumberForZero) {
  write("27000\n", "none\n", "2\n");
  expect_value(54.0F);
  write("none\n", "-20000\n", "2\n");
  expect_value(-40.0F);
  write("27000\n", "-20000\n", "none\n");
  expect_value(0.0F);
}

TEST_P(ScaledChannel, IsInfiniteWhereANumberIsTooLarge) {
  const std::string large(5000, '9');
  write(large, "-20000\n", "2\n");
  expect_value(std::numeric_limits<float>::infinity());
  write("27000\n", "-" + large, "2\n");
  expect_value(-std::numeric_limits<float>::infinity());
  write("27000\n", "-20000\n", large);
  expect_value(std::numeric_limits<float>::infinity());
}

TEST_P(ScaledChannel, IsNoNumberWhereThereIsNone) {
  for (const auto& [raw, offset, scale] : {std::tuple("nan\n", "0\n", "1\n"),
                                           {"0\n", "nan\n", "1\n"},
                                           {"0\n", "0\n", "nan\n"},
                                           {"inf\n", "-inf\n", "1\n"}}) {
    write(raw, offset, scale);
    float value = -77;
    EXPECT_TRUE(GetParam().read(value));
    EXPECT_TRUE(std::isnan(value)) << raw << offset << scale;
  }
}

TEST(ScaledChannels, AreDifferentChannels) {
  test_support::fake_udev_t machine;
  for (const char* suffix : {"_raw", "_offset", "_scale"}) {
    machine.write(folder + "in_temp2_pl_temp" + suffix, "100\n");
  }
  float value = 0;
  EXPECT_TRUE(lnx::read_pl_temperature(value));
  EXPECT_FLOAT_EQ(value, 20.0F);
  EXPECT_FALSE(lnx::read_ps_temperature(value));
}
