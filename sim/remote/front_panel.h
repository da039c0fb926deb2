#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "sim/remote/remote_control.h"

namespace sim {

/// A key of the front panel.
enum class key_e { id, reset };

/// What the lamp of the front panel looks like.
struct led_t {
  std::string colour = "off";  ///< "off", "blue", "green", "white", "cyan"
  uint32_t brightness = 0;     ///< 0 to 255, in the lit phase
  uint32_t period_ms = 0;      ///< of blinking, on and off together; 0: steady

  bool operator==(const led_t&) const = default;
};

/// The words of "/sim/led/looks"; nothing for a text in another form.
std::optional<led_t> parse_looks(const std::string& looks);

/// Steers and observes the front panel of a running appliance and what hangs on it: keys, lamp, brightness setting,
/// factory reset script, the process of the runtime engine. The vocabulary of the demo and of the scenario tests. One
/// thread.
class front_panel_t {
 public:
  using limit_t = remote_control_t::limit_t;

  /// `remote` must outlive this object.
  explicit front_panel_t(remote_control_t& control) : remote(control) {}

  // --- keys ---

  void press(key_e key) { act(key, "press"); }
  void release(key_e key) { act(key, "release"); }
  /// What the kernel gives again and again while a key is held.
  void repeat(key_e key) { act(key, "repeat"); }
  /// Presses the key, waits until `until` has come or failed, and releases it.
  outcome_t hold(key_e key, const std::function<outcome_t()>& until);
  /// One read of the keys' device gives these bytes, in hex.
  void feed_key_bytes(const std::string& hex) { remote.set("/sim/key/bytes", hex); }
  /// "present", "gone" or "ended".
  void set_key_device(const std::string& state) { remote.set("/sim/key/device", state); }
  /// Waits until a program has the keys' device open: a key that is pressed before is lost.
  outcome_t expect_keys_open(limit_t limit = generous_limit);

  // --- lamp ---

  led_t led();
  /// Waits until the lamp satisfies `wanted`; `what` says it in words.
  outcome_t expect_led(const std::string& what, const std::function<bool(const led_t& led)>& wanted,
                       limit_t limit = generous_limit);
  outcome_t expect_led_off(limit_t limit = generous_limit);
  /// Waits until the lamp is lit in this colour and does not blink.
  outcome_t expect_led_steady(const std::string& colour, uint32_t brightness, limit_t limit = generous_limit);
  /// Waits until the lamp blinks in this colour with this period, on and off together. Where a program lets it blink by
  /// writing, the period is a measured one: a quarter more or less is the same.
  outcome_t expect_led_blinking(const std::string& colour, uint32_t brightness, std::chrono::milliseconds period,
                                limit_t limit = generous_limit);
  /// How many writes have made the light another one.
  int led_changes();
  /// Waits until a file of the lamp, as in "/proc/tarn/pwm-0/period", was last given this text.
  outcome_t expect_led_written(const std::string& file, const std::string& text, limit_t limit = generous_limit);
  /// With false, the lamp's files are missing, as with a driver that is not loaded.
  void set_led_driver(bool present) { remote.set("/sim/led/driver", present ? "present" : "absent"); }
  /// The user's choice: "Off", "Dim", "Bright", or any text; "absent" takes its file away.
  void set_brightness_setting(const std::string& text) { remote.set("/sim/led/setting", text); }

  // --- factory reset script ---

  void set_reset_script(bool present) { remote.set("/sim/reset/script", present ? "present" : "missing"); }
  /// What the next one does: "exits N", "dies", or "runs" until `end_reset_script`.
  void set_reset_script_behaviour(const std::string& does) { remote.set("/sim/reset/does", does); }
  /// "exits N" or "dies".
  void end_reset_script(const std::string& ending) { remote.set("/sim/reset/end", ending); }
  /// How often it was started.
  int reset_script_starts();
  /// Waits until it was started this often in all, the last time with these arguments.
  outcome_t expect_reset_script(int starts, const std::string& arguments = "--level=1", limit_t limit = generous_limit);
  outcome_t expect_reset_script_running(bool running, limit_t limit = generous_limit);

  // --- process of the runtime engine ---

  void start_runtime_engine() { remote.set("/sim/runtime_engine/process", "1"); }
  void stop_runtime_engine() { remote.set("/sim/runtime_engine/process", "0"); }
  /// The name of the next one.
  void set_runtime_engine_name(const std::string& name) { remote.set("/sim/runtime_engine/name", name); }

 private:
  void act(key_e key, const std::string& word);

  remote_control_t& remote;
};

}  // namespace sim
