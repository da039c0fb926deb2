#include "tools/vgnctl/edid/hex_text.h"

#include <cstddef>

namespace vgnctl {
namespace {

constexpr std::string_view low_digits = "0123456789abcdef";
constexpr std::string_view white_space = " \t\n\v\f\r";

void append(std::string& text, uint8_t byte) {
  text += low_digits[byte >> 4U];
  text += low_digits[byte & 0xFU];
}

/// 0 to 15; `npos` for what is no hex digit.
std::size_t value_of(char digit) {
  const bool upper = digit >= 'A' && digit <= 'F';
  return low_digits.find(upper ? static_cast<char>(digit - 'A' + 'a') : digit);
}

}  // namespace

std::string hex_text(std::span<const uint8_t> bytes) {
  std::string text;
  for (const uint8_t byte : bytes) {
    append(text, byte);
  }
  return text;
}

std::string hex_lines(std::span<const uint8_t> bytes) {
  constexpr std::size_t line_size = 16;
  constexpr std::size_t block_size = 128;
  std::string text;
  for (std::size_t i = 0; i < bytes.size(); ++i) {
    append(text, bytes[i]);
    const bool last_of_line = (i + 1) % line_size == 0 || i + 1 == bytes.size();
    text += last_of_line ? '\n' : ' ';
    text += (i + 1) % block_size == 0 && i + 1 != bytes.size() ? "\n" : "";
  }
  return text;
}

std::optional<std::string> hex_digits_of(std::string_view text) {
  std::string digits;
  for (const char character : text) {
    if (value_of(character) != std::string_view::npos) {
      digits += character;
    } else if (white_space.find(character) == std::string_view::npos) {
      return std::nullopt;
    }
  }
  return digits;
}

std::vector<uint8_t> bytes_of_hex(std::string_view digits) {
  std::vector<uint8_t> bytes;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
    bytes.push_back(static_cast<uint8_t>(value_of(digits[i]) << 4U | value_of(digits[i + 1])));
  }
  return bytes;
}

}  // namespace vgnctl
