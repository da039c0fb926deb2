#pragma once

#include <linux/input.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace sim {

/// What a key does: the value of an EV_KEY event.
enum class key_action_e : int32_t { release = 0, press = 1, repeat = 2 };

/// "press", "repeat" or "release"; nothing for any other word.
std::optional<key_action_e> parse_key_action(std::string_view word);

/// What the kernel gives for it, in one read: the event of the key, and the EV_SYN event that closes a report.
std::array<input_event, 2> key_report(uint16_t code, key_action_e action, timeval time);

/// The bytes of a text of hex digits, two a byte, with blanks between bytes or without; nothing for any other text.
std::optional<std::vector<uint8_t>> parse_hex(std::string_view text);

}  // namespace sim
