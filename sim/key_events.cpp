#include "sim/key_events.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <system_error>

namespace sim {

std::optional<key_action_e> parse_key_action(std::string_view word) {
  if (word == "press") {
    return key_action_e::press;
  }
  if (word == "repeat") {
    return key_action_e::repeat;
  }
  return word == "release" ? std::optional(key_action_e::release) : std::nullopt;
}

std::array<input_event, 2> key_report(uint16_t code, key_action_e action, timeval time) {
  std::array<input_event, 2> report{};
  for (auto& event : report) {
    event.time = time;
  }
  report[0].type = EV_KEY;
  report[0].code = code;
  report[0].value = static_cast<int32_t>(action);
  report[1].type = EV_SYN;
  report[1].code = SYN_REPORT;
  return report;
}

std::optional<std::vector<uint8_t>> parse_hex(std::string_view text) {
  std::vector<uint8_t> bytes;
  for (;;) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    if (text.empty()) {
      return bytes;
    }
    const std::string_view digits = text.substr(0, 2);
    uint8_t byte = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
    if (digits.size() != 2 || error != std::errc() || end != digits.data() + 2) {
      return std::nullopt;
    }
    bytes.push_back(byte);
    text.remove_prefix(2);
  }
}

}  // namespace sim
