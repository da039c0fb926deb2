#include <chrono>
#include <string>

#include "tests/scenarios/front_panel_scenario.h"

// What counts here is the process; what the runtime engine says of itself stays empty.

namespace scenarios {
namespace {

constexpr const char* ui_control_path = "/vgn_ui/vgn_ui_control";

class RuntimeEngine : public FrontPanelScenario {
 protected:
  void run_process(const std::string& name) {
    panel().set_runtime_engine_name(name);
    panel().start_runtime_engine();
  }

  void expect_design_has_screens() { expect_property(ui_control_path, "0"); }
  void expect_ui_has_screens() { expect_property(ui_control_path, "1"); }
};

TEST_F(RuntimeEngine, HasTheScreensWhileItsProcessLives) {
  start_daemon();
  remote().plug(0, sim::full_hd_display_edid());
  expect_splash(0);
  run_process("runtime_engine");
  expect_design_has_screens();
  expect_dark(0);
  panel().stop_runtime_engine();
  expect_ui_has_screens();
  expect_splash(0);
}

TEST_F(RuntimeEngine, HasANameThatOneMoreCharacterMakesAnother) {
  // The processes are looked at each second.
  constexpr std::chrono::milliseconds some_looks{2500};
  start_daemon();
  expect_ui_has_screens();
  remote().set(ui_control_path, "a mark");
  run_process("runtime_engine2");
  expect_property("/sim/runtime_engine/process", "1");
  const auto overwritten = remote().wait_property(
      ui_control_path, [](const std::string& value) { return value != "a mark"; }, some_looks);
  EXPECT_FALSE(overwritten) << overwritten.seen;
  EXPECT_EQ(remote().value("/sim/runtime_engine/process"), "1") << "the other one still lives";
  panel().stop_runtime_engine();
  run_process("runtime_engine");
  expect_design_has_screens();
}

TEST_F(RuntimeEngine, ThatRunsBeforeTheDaemonGetsTheScreensAtTheStart) {
  run_process("runtime_engine");
  expect_property("/sim/runtime_engine/process", "1");
  launch_daemon();
  expect_design_has_screens();
}

class RuntimeEngineOfModel105 : public RuntimeEngine {
 protected:
  sim::appliance_process_t::options_t appliance_options() const override {
    sim::appliance_process_t::options_t options;
    options.model = 105;
    return options;
  }
};

TEST_F(RuntimeEngineOfModel105, ThatStopsPutsTheKtm5030Back) {
  start_daemon();
  run_process("runtime_engine");
  expect_design_has_screens();
  remote().set("/sim/ktm5030/mode", "1");
  expect_property("/sim/ktm5030/mode", "1");
  panel().stop_runtime_engine();
  expect_ui_has_screens();
  expect_property("/sim/ktm5030/mode", "0");
}

}  // namespace
}  // namespace scenarios
