#include <linux/input.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <random>
#include <span>
#include <string>
#include <vector>

#include "tests/scenarios/front_panel_scenario.h"

namespace scenarios {
namespace {

constexpr std::size_t digits_per_event = 2 * sizeof(input_event);

std::string hex(std::span<const uint8_t> bytes) {
  constexpr const char* digits = "0123456789abcdef";
  std::string text;
  for (const uint8_t byte : bytes) {
    text += {digits[byte >> 4], digits[byte & 15]};
  }
  return text;
}

/// What the kernel gives for one event.
std::string event(uint16_t type, uint16_t code, int32_t value) {
  input_event event{};
  event.type = type;
  event.code = code;
  event.value = value;
  std::array<uint8_t, sizeof event> bytes{};
  std::memcpy(bytes.data(), &event, sizeof event);
  return hex(bytes);
}

class Keys : public FrontPanelScenario {
 protected:
  /// They do not hang on the keys' device.
  void expect_the_rest_to_work() {
    set_id_mode("on");
    expect_blinking(green, id_mode_period);
    set_id_mode("off");
    expect_lamp(blue);
  }
};

TEST_F(Keys, AreSharedWithOtherProgramsAndRepeatedAtThePaceOfAPanel) {
  start_with_keys();
  expect_property("/sim/key/grab", "0");
  expect_property("/sim/key/repeat", "400 80");
}

TEST_F(Keys, AreHeardThoughAReadEndsWithinAnEvent) {
  start_with_keys();
  const std::string press = event(EV_KEY, KEY_F1, 1) + event(EV_SYN, SYN_REPORT, 0);
  panel().feed_key_bytes(press.substr(0, 20));
  panel().feed_key_bytes(press.substr(20, digits_per_event));
  panel().feed_key_bytes(press.substr(20 + digits_per_event));
  expect_id_mode("on");
  expect_blinking(green, id_mode_period);
}

TEST_F(Keys, OfOneReadAreAllHeardInOrder) {
  start_with_keys();
  panel().feed_key_bytes(event(EV_KEY, KEY_F1, 1) + event(EV_SYN, SYN_REPORT, 0) + event(EV_KEY, KEY_F1, 0) +
                         event(EV_SYN, SYN_REPORT, 0) + event(EV_KEY, KEY_F2, 1) + event(EV_KEY, KEY_F2, 0));
  expect_blinking(green, id_mode_period);
  EXPECT_EQ(id_mode(), "on") << "by the first";
  panel().press(key_e::id);
  expect_lamp(blue);
}

TEST_F(Keys, WorkAfterGarbage) {
  start_with_keys();
  std::mt19937 random(20260102);
  std::uniform_int_distribution<int> byte(0, 255);
  std::vector<uint8_t> garbage(20 * sizeof(input_event));
  for (uint8_t& value : garbage) {
    value = static_cast<uint8_t>(byte(random));
  }
  panel().feed_key_bytes(hex(garbage));
  panel().feed_key_bytes(std::string(10 * digits_per_event, 'f'));
  panel().feed_key_bytes(event(EV_KEY, KEY_A, 1) + event(EV_REL, KEY_F1, 1) + event(EV_KEY, KEY_F1 + 0x100, 1));
  panel().press(key_e::reset);
  expect_blinking(green, reset_period);
  EXPECT_EQ(id_mode(), "") << "none of that was the id key";
}

TEST_F(Keys, WorkAfterAnEndOfFile) {
  start_with_keys();
  panel().set_key_device("ended");
  expect_told("Got EOF from the input device");
  panel().set_key_device("present");
  panel().press(key_e::id);
  expect_id_mode("on");
  expect_blinking(green, id_mode_period);
}

TEST_F(Keys, ThatArePulledOutAreGivenUpForGood) {
  start_with_keys();
  panel().set_key_device("gone");
  expect_told("Couldn't read from the input device");
  panel().set_key_device("present");
  panel().press(key_e::id);
  expect_the_rest_to_work();
  EXPECT_EQ(remote().value("/sim/key/open"), "0");
  const std::string log = remote().log();
  const std::string text = "Couldn't read from the input device";
  EXPECT_EQ(log.find(text), log.rfind(text)) << "told more than once";
}

class NoKeys : public Keys, public testing::WithParamInterface<std::string> {};

TEST_P(NoKeys, LeaveTheRestWorking) {
  launch_daemon({}, {"--input=" + GetParam()});
  expect_told("Couldn't open the input device");
  expect_the_rest_to_work();
  EXPECT_EQ(remote().value("/sim/key/open"), "0");
}

INSTANTIATE_TEST_SUITE_P(Paths, NoKeys, testing::Values("", "/dev/input/event7"));

}  // namespace
}  // namespace scenarios
