#include "tests/scenarios/front_panel_scenario.h"

namespace scenarios {
namespace {

constexpr int model_with_status_lamp = 106;
constexpr const char* id_mode_path = "/tarn/mode/id";
constexpr const char* ui_control_path = "/vgn_ui/vgn_ui_control";

}  // namespace

void FrontPanelScenario::SetUp() {
  DaemonScenario::SetUp();
  front_panel.emplace(remote());
}

void FrontPanelScenario::TearDown() {
  if (front_panel) {
    EXPECT_EQ(remote().value("/sim/led/refused"), "0") << "writes to the lamp's files that its driver refused";
  }
  DaemonScenario::TearDown();
}

// The first that it hears is that no runtime engine runs, and it tells who has the screens then. Told the same once
// more, it has heard the rest too.
void FrontPanelScenario::start_with_keys(const std::vector<std::string>& arguments) {
  launch_daemon({}, arguments);
  const auto open = panel().expect_keys_open();
  EXPECT_TRUE(open) << open.seen;
  expect_property(ui_control_path, "1");
  tell_engine_state("", "1");
}

void FrontPanelScenario::expect_lamp(const led_t& wanted) {
  const auto seen = panel().expect_led(wanted.colour + " at " + std::to_string(wanted.brightness),
                                       [&wanted](const led_t& led) { return led == wanted; });
  EXPECT_TRUE(seen) << seen.seen;
}

void FrontPanelScenario::expect_blinking(const led_t& lit) {
  const auto seen = panel().expect_led("blinking in " + lit.colour, [&lit](const led_t& led) {
    return led.colour == lit.colour && led.brightness == lit.brightness && led.period_ms != 0;
  });
  EXPECT_TRUE(seen) << seen.seen;
}

void FrontPanelScenario::expect_blinking(const led_t& lit, std::chrono::milliseconds period) {
  const auto seen = panel().expect_led_blinking(lit.colour, lit.brightness, period);
  EXPECT_TRUE(seen) << seen.seen;
}

void FrontPanelScenario::expect_changes_of_light(int count) {
  const int wanted = panel().led_changes() + count;
  const auto changed = remote().wait_property(
      "/sim/led/changes", [wanted](const std::string& changes) { return std::stoi(changes) >= wanted; });
  EXPECT_TRUE(changed) << changed.seen;
}

std::string FrontPanelScenario::id_mode() { return remote().value(id_mode_path); }

void FrontPanelScenario::expect_id_mode(const std::string& mode) { expect_property(id_mode_path, mode); }

void FrontPanelScenario::set_id_mode(const std::string& mode) { remote().set(id_mode_path, mode); }

void FrontPanelScenario::expect_reset_script(int starts) {
  const auto started = panel().expect_reset_script(starts);
  EXPECT_TRUE(started) << started.seen;
}

void FrontPanelScenario::set_design_status(const std::string& status) { remote().set("/tarn/design/status", status); }

void FrontPanelScenario::set_valid_format(const std::string& valid) {
  remote().set("/vgn_control/receiving_valid_format", valid);
}

void FrontPanelScenario::let_engine_run() { tell_engine_state("Running", "0"); }

void FrontPanelScenario::tell_engine_state(const std::string& state, const std::string& ui_control) {
  remote().set(ui_control_path, "");
  remote().design(state);
  expect_property(ui_control_path, ui_control);
}

sim::appliance_process_t::options_t FrontPanelOfModel::appliance_options() const {
  sim::appliance_process_t::options_t options;
  options.model = GetParam();
  return options;
}

led_t FrontPanelOfModel::idle_lamp() { return GetParam() == model_with_status_lamp ? blue : led_t{}; }

led_t FrontPanelOfModel::flashing_lamp() {
  return GetParam() == model_with_status_lamp ? green : led_t{"white", 255, 0};
}

}  // namespace scenarios
