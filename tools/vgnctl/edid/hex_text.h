#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace vgnctl {

/// Two lower-case hex digits a byte, nothing between them.
std::string hex_text(std::span<const uint8_t> bytes);

/// Lines of 16 bytes for people, with an empty line between two blocks of 128.
std::string hex_lines(std::span<const uint8_t> bytes);

/// The hex digits of a text that has nothing else but white space; nothing for another text.
std::optional<std::string> hex_digits_of(std::string_view text);

/// The bytes that pairs of hex digits stand for; a last digit without partner is left out.
std::vector<uint8_t> bytes_of_hex(std::string_view digits);

}  // namespace vgnctl
