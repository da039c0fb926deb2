#include "sim/appliance.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "lnx/src/board_sensors.h"
#include "lnx/src/ktm5030.h"
#include "lnx/src/power_source.h"
#include "sim/test/text_of_file.h"

namespace {

constexpr const char* environment_file = "/run/vgn-appliance.env";

/// A process makes an appliance once.
class ApplianceOfModel : public testing::TestWithParam<int> {};

INSTANTIATE_TEST_SUITE_P(, ApplianceOfModel, testing::Values(105, 106),
                         [](const auto& test) { return std::to_string(test.param); });

}  // namespace

TEST_P(ApplianceOfModel, HasTheBoardsFilesAndAKtm5030OnModel105Only) {
  const sim::appliance_t appliance(*sim::find_model(GetParam()), "/tmp/story");
  float degrees = 0;
  EXPECT_TRUE(lnx::read_board_temperature_a(degrees));
  EXPECT_EQ(degrees, 41.5F);
  uint32_t power_class = 0;
  EXPECT_TRUE(lnx::read_power_source(power_class));
  EXPECT_EQ(power_class, 3U);
  uint32_t mode = 77;
  EXPECT_EQ(lnx::ktm5030_get_mode(mode) != 0, GetParam() == 105);
}

TEST(Appliance, LeavesItsEnvironmentWhereTheSandboxLooksForItWhileItIsUp) {
  {
    const sim::appliance_t appliance(*sim::find_model(106), "/tmp/story");
    std::string expected;
    for (const auto& [name, value] : appliance.daemon_environment()) {
      expected.append(name).append("=").append(value).append("\n");
    }
    EXPECT_NE(expected, "");
    EXPECT_EQ(sim::text_of_file(environment_file), expected);
  }
  EXPECT_FALSE(std::filesystem::exists(environment_file));
}
