#include <cstdlib>
#include <fstream>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <string>

#include "tests/scenarios/front_panel_scenario.h"

namespace scenarios {
namespace {

/// What somebody finds out who is logged in on the appliance.
class HardwareOfModel : public FrontPanelOfModel {
 protected:
  nlohmann::json status() {
    const std::string file = "/tmp/status";
    const std::string program = sim::program_folder() + "/vgnctl";
    sim::child_process_t vgnctl({program, "status", "--json"}, {environment(), file});
    EXPECT_EQ(vgnctl.wait(sim::generous_limit), EXIT_SUCCESS);
    std::ifstream output(file);
    return nlohmann::json::parse(std::string((std::istreambuf_iterator<char>(output)), {}), nullptr, false);
  }

 private:
  std::map<std::string, std::string> environment() {
    auto variables = sim::device_environment(remote());
    // The preload library of the devices comes before the sanitizer's, which it would otherwise refuse.
    const char* inherited = std::getenv("ASAN_OPTIONS");
    variables["ASAN_OPTIONS"] = std::string(inherited != nullptr ? inherited : "") + ":verify_asan_link_order=0";
    return variables;
  }
};

TEST_P(HardwareOfModel, IsToldAsTheBoardTellsIt) {
  remote().set("/sim/hardware/pwm1", "77");
  remote().set("/sim/hardware/fan1_input", "absent");
  expect_property("/sim/hardware/fan1_input", "absent");
  const auto told = status();
  EXPECT_EQ(told["fan_pwm"], 77);
  EXPECT_EQ(told["fan_speed"], nullptr);
  EXPECT_EQ(told["poe_class"], remote().value("/sim/hardware/poe_class"));
}

TEST_P(HardwareOfModel, HasAKtm5030OnModel105Alone) {
  const bool expected = GetParam() == 105;
  EXPECT_EQ(remote().value("/sim/ktm5030/device"), expected ? "present" : "absent");
  remote().set("/sim/ktm5030/mode", "1");
  expect_property("/sim/ktm5030/mode", "1");
  EXPECT_EQ(status()["ktm5030_mode"], expected ? nlohmann::json(2) : nlohmann::json());
}

INSTANTIATE_TEST_SUITE_P(Models, HardwareOfModel, testing::Values(105, 106));

}  // namespace
}  // namespace scenarios
