#include "sim/demo/front_panel_demo.h"

#include <iostream>

namespace sim {
namespace {

constexpr const char* id_mode_path = "/tarn/mode/id";
constexpr const char* design_path = "/tarn/design/status";
constexpr const char* valid_format_path = "/vgn_control/receiving_valid_format";
constexpr const char* ui_control_path = "/vgn_ui/vgn_ui_control";
constexpr const char* screen_path = "/vgn_ui/hdmi1_current_screen";

constexpr std::chrono::milliseconds id_period{1000};
constexpr uint32_t slowest_reset_period_ms = 400;
constexpr std::chrono::milliseconds watched{2500};

}  // namespace

front_panel_demo_t::front_panel_demo_t(const options_t& chosen)
    : demo_t(chosen), due(due_lamp(chosen.model)), panel(remote) {}

void front_panel_demo_t::play() {
  start_daemon();
  expect_start();
  wait_for_zero();
  use_id_key();
  run_design();
  if (due.shows_status()) {
    choose_brightness();
  }
  lose_design();
  hold_reset_key_briefly();
  hold_reset_key();
  require_daemon();
}

void front_panel_demo_t::expect_start() {
  expect_introduction();
  require(panel.expect_keys_open(), "the keys are opened");
  require(remote.expect_property("/sim/key/grab", "0"), "the keys are left to others too");
  require(remote.expect_property("/sim/key/repeat", "400 80"), "the keys' repeat is set");
  expect_status_lamp(due.idle, "the lamp is as it is without a design");
  expect_screen("boot_splash_screen");
}

// The lamp follows the property, not the key.
void front_panel_demo_t::use_id_key() {
  panel.press(key_e::id);
  expect_id_mode("on");
  require(panel.expect_led_blinking(due.flashing.colour, due.flashing.brightness, id_period), "id mode lets it blink");
  panel.release(key_e::id);
  pause(watched);
  panel.press(key_e::id);
  expect_id_mode("off");
  expect_lamp(due.idle, "the end of id mode ends the blinking");
  panel.release(key_e::id);
  pause();
}

void front_panel_demo_t::run_design() {
  panel.start_runtime_engine();
  require(remote.expect_property(ui_control_path, "0"), "the screens go to the design");
  remote.set(valid_format_path, "true");
  remote.set(design_path, "OK");
  expect_status_lamp(due.good, "a good design is shown");
  pause();
}

void front_panel_demo_t::choose_brightness() {
  panel.set_brightness_setting("Dim");
  expect_lamp(due.dimmed, "the brightness follows the setting");
  pause();
  panel.set_brightness_setting("Bright");
  expect_lamp(due.good, "the brightness follows the setting");
  pause();
}

void front_panel_demo_t::lose_design() {
  panel.stop_runtime_engine();
  require(remote.expect_property(ui_control_path, "1"), "the screens go to the local user interface");
  expect_screen("disconnected");
  expect_status_lamp(due.idle, "a lost design is shown");
  pause();
}

void front_panel_demo_t::hold_reset_key_briefly() {
  // Not to the millisecond: on a busy machine that could take until the script starts.
  const auto quickly = [this](const led_t& led) {
    return led.colour == due.flashing.colour && led.period_ms > 0 && led.period_ms <= slowest_reset_period_ms;
  };
  const auto blinks = panel.hold(key_e::reset, [&] {
    auto outcome = panel.expect_led("blinks quickly", quickly);
    pause();
    return outcome;
  });
  require(blinks, "the reset key lets it blink quickly");
  expect_lamp(due.idle, "its release ends that");
  require({panel.reset_script_starts() == 0, "it was started"}, "no script is started");
  pause();
}

void front_panel_demo_t::hold_reset_key() {
  panel.set_reset_script_behaviour("runs");
  const auto started = panel.hold(key_e::reset, [this] { return panel.expect_reset_script(1); });
  require(started, "the factory reset script is started");
  expect_lamp(due.idle, "the start ends the blinking");
  require(panel.expect_reset_script_running(true), "the release does not end the script");
  pause();
  panel.end_reset_script("exits 0");
  require(panel.expect_reset_script_running(false), "the script ends");
  expect_lamp(due.idle, "the end leaves the lamp as it is");
  // For who goes on with the appliance: a script that ends by itself.
  panel.set_reset_script_behaviour("exits 0");
}

void front_panel_demo_t::expect_lamp(const led_t& wanted, const std::string& what) {
  require(wanted.brightness == 0 ? panel.expect_led_off() : panel.expect_led_steady(wanted.colour, wanted.brightness),
          what);
}

void front_panel_demo_t::expect_status_lamp(const led_t& wanted, const std::string& what) {
  if (due.shows_status()) {
    expect_lamp(wanted, what);
  }
}

void front_panel_demo_t::expect_id_mode(const char* mode) {
  require(remote.expect_property(id_mode_path, mode), std::string("id mode goes ") + mode);
}

void front_panel_demo_t::expect_screen(const char* screen) {
  require(remote.expect_property(screen_path, screen), "the user interface is told what to show");
}

void front_panel_demo_t::print_end() {
  std::cout << "\nThe front panel now shows\n"
            << "  lamp         " << remote.value("/sim/led/looks") << '\n'
            << "  id mode      " << remote.value(id_mode_path) << '\n'
            << "  screen       " << remote.value(screen_path) << '\n'
            << "  reset script started " << (panel.reset_script_starts() == 1 ? "once" : "not once") << "\n\n";
}

demo_t::steering_t front_panel_demo_t::steering() {
  return {{"/sim/key/id", "press"},    {"/sim/key/reset", "press"},          {"/sim/key/reset", "release"},
          {"/sim/led/setting", "Dim"}, {"/sim/runtime_engine/process", "1"}, {valid_format_path, "true"},
          {design_path, "OK"}};
}

}  // namespace sim
