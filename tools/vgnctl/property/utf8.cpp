#include "tools/vgnctl/property/utf8.h"

#include <array>
#include <cstdint>

namespace vgnctl {
namespace {

/// A row of the table "Well-Formed UTF-8 Byte Sequences" of the Unicode standard, section 3.9. Bytes behind the second
/// are 0x80 to 0xBF.
struct sequence_t {
  uint8_t first_low;
  uint8_t first_high;
  uint8_t second_low;
  uint8_t second_high;
  std::size_t length;
};

constexpr std::array<sequence_t, 9> sequences{{
    {0x00, 0x7F, 0x00, 0x00, 1},
    {0xC2, 0xDF, 0x80, 0xBF, 2},
    {0xE0, 0xE0, 0xA0, 0xBF, 3},
    {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3},
    {0xEE, 0xEF, 0x80, 0xBF, 3},
    {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4},
    {0xF4, 0xF4, 0x80, 0x8F, 4},
}};

bool is_within(char character, uint8_t low, uint8_t high) {
  const auto byte = static_cast<uint8_t>(character);
  return byte >= low && byte <= high;
}

bool begins_with(std::string_view text, const sequence_t& sequence) {
  if (text.size() < sequence.length || !is_within(text[0], sequence.first_low, sequence.first_high)) {
    return false;
  }
  bool good = sequence.length == 1 || is_within(text[1], sequence.second_low, sequence.second_high);
  for (std::size_t i = 2; i < sequence.length; ++i) {
    good = good && is_within(text[i], 0x80, 0xBF);
  }
  return good;
}

}  // namespace

std::size_t utf8_length(std::string_view text) {
  for (const sequence_t& sequence : sequences) {
    if (begins_with(text, sequence)) {
      return sequence.length;
    }
  }
  return 0;
}

bool is_utf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = utf8_length(text);
    if (length == 0) {
      return false;
    }
    text.remove_prefix(length);
  }
  return true;
}

}  // namespace vgnctl
