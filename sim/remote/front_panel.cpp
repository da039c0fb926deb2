#include "sim/remote/front_panel.h"

#include <regex>

namespace sim {
namespace {

const char* path_of(key_e key) { return key == key_e::id ? "/sim/key/id" : "/sim/key/reset"; }

uint32_t number(const std::ssub_match& digits) { return static_cast<uint32_t>(std::stoul(digits.str())); }

int count(const std::string& value) { return value.empty() ? 0 : std::stoi(value); }

}  // namespace

std::optional<led_t> parse_looks(const std::string& looks) {
  static const std::regex form("([a-z]+) at ([0-9]{1,3}), (?:steady|blinks every ([0-9]{1,9}) ms)");
  if (looks == "off") {
    return led_t{};
  }
  std::smatch found;
  if (!std::regex_match(looks, found, form)) {
    return std::nullopt;
  }
  return led_t{found[1].str(), number(found[2]), found[3].matched ? number(found[3]) : 0};
}

void front_panel_t::act(key_e key, const std::string& word) { remote.set(path_of(key), word); }

outcome_t front_panel_t::hold(key_e key, const std::function<outcome_t()>& until) {
  press(key);
  outcome_t outcome = until();
  release(key);
  return outcome;
}

outcome_t front_panel_t::expect_keys_open(limit_t limit) { return remote.expect_property("/sim/key/open", "1", limit); }

led_t front_panel_t::led() { return parse_looks(remote.value("/sim/led/looks")).value_or(led_t{}); }

outcome_t front_panel_t::expect_led(const std::string& what, const std::function<bool(const led_t& led)>& wanted,
                                    limit_t limit) {
  const auto satisfies = [&wanted](const std::string& looks) {
    const auto led = parse_looks(looks);
    return led && wanted(*led);
  };
  outcome_t outcome = remote.wait_property("/sim/led/looks", satisfies, limit);
  if (!outcome) {
    outcome.seen += ", not " + what;
  }
  return outcome;
}

outcome_t front_panel_t::expect_led_off(limit_t limit) {
  return expect_led(
      "off", [](const led_t& led) { return led == led_t{}; }, limit);
}

outcome_t front_panel_t::expect_led_steady(const std::string& colour, uint32_t brightness, limit_t limit) {
  const led_t wanted{colour, brightness, 0};
  return expect_led(
      colour + " at " + std::to_string(brightness) + ", steady", [&wanted](const led_t& led) { return led == wanted; },
      limit);
}

outcome_t front_panel_t::expect_led_blinking(const std::string& colour, uint32_t brightness,
                                             std::chrono::milliseconds period, limit_t limit) {
  const auto matches = [&](const led_t& led) {
    const std::chrono::milliseconds seen(led.period_ms);
    return led.colour == colour && led.brightness == brightness && seen > period * 3 / 4 && seen < period * 5 / 4;
  };
  const std::string what = colour + " at " + std::to_string(brightness) + ", blinks every " +
                           std::to_string(period.count()) + " ms or nearly so";
  return expect_led(what, matches, limit);
}

int front_panel_t::led_changes() { return count(remote.value("/sim/led/changes")); }

outcome_t front_panel_t::expect_led_written(const std::string& file, const std::string& text, limit_t limit) {
  return remote.expect_property("/sim/led/written" + file, text, limit);
}

int front_panel_t::reset_script_starts() { return count(remote.value("/sim/reset/starts")); }

outcome_t front_panel_t::expect_reset_script(int starts, const std::string& arguments, limit_t limit) {
  outcome_t outcome = remote.expect_property("/sim/reset/starts", std::to_string(starts), limit);
  return outcome ? remote.expect_property("/sim/reset/arguments", arguments, limit) : outcome;
}

outcome_t front_panel_t::expect_reset_script_running(bool running, limit_t limit) {
  return remote.expect_property("/sim/reset/running", running ? "1" : "0", limit);
}

}  // namespace sim
