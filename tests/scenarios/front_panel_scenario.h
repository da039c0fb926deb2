#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "sim/remote/front_panel.h"
#include "tests/scenarios/daemon_scenario.h"

namespace scenarios {

using sim::key_e;
using sim::led_t;

// What the lamp of model 106 has to show.
inline const led_t blue{"blue", 15, 0};
inline const led_t green{"green", 15, 0};

/// The whole periods, on and off together, by which a lamp says what goes on.
inline constexpr std::chrono::milliseconds id_mode_period{1000};
inline constexpr std::chrono::milliseconds reset_period{200};

/// A scenario with somebody in front of the appliance, who presses its keys and looks at its lamp. A model 106, unless
/// the test makes it another one.
///
/// At the end of each test the lamp's drivers must have refused nothing that the daemon wrote.
class FrontPanelScenario : public DaemonScenario {
 protected:
  void SetUp() override;
  void TearDown() override;

  /// Starts the daemon and waits until it hears the keys and has been told how the system is.
  void start_with_keys(const std::vector<std::string>& arguments = {});

  sim::front_panel_t& panel() { return *front_panel; }

  /// Waits until the lamp looks like this.
  void expect_lamp(const led_t& wanted);

  /// Waits until the lamp blinks as `lit`, whatever the period.
  void expect_blinking(const led_t& lit);
  void expect_blinking(const led_t& lit, std::chrono::milliseconds period);

  /// Waits until this many more writes have made the light another one.
  void expect_changes_of_light(int count);

  /// The system's id mode: "on" or "off".
  std::string id_mode();
  void expect_id_mode(const std::string& mode);
  void set_id_mode(const std::string& mode);

  /// Waits until the factory reset script was started this often in all.
  void expect_reset_script(int starts);

  void set_design_status(const std::string& status);
  void set_valid_format(const std::string& valid);

  /// The runtime engine says that it runs. Waits until the daemon has heard that, and so everything that was said
  /// before.
  void let_engine_run();

 private:
  void tell_engine_state(const std::string& state, const std::string& ui_control);

  std::optional<sim::front_panel_t> front_panel;
};

/// A scenario on the model that is the test's parameter.
class FrontPanelOfModel : public FrontPanelScenario, public testing::WithParamInterface<int> {
 protected:
  sim::appliance_process_t::options_t appliance_options() const override;

  /// The lamp when nothing goes on, and in the lit phase of its blinking.
  static led_t idle_lamp();
  static led_t flashing_lamp();
};

}  // namespace scenarios
