#include "edid_lib/edid_block.h"

#include <algorithm>
#include <numeric>
#include <ostream>
#include <string>

namespace edid_lib {
namespace {

constexpr std::size_t row_size = 16;

std::string row_text(std::size_t number, std::span<const uint8_t> row) {
  constexpr char digits[] = "0123456789abcdef";
  std::string text = std::to_string(number);
  text.insert(0, 3 - std::min<std::size_t>(text.size(), 3), ' ');
  text += ':';
  for (const uint8_t byte : row) {
    text += ' ';
    text += digits[byte >> 4];
    text += digits[byte & 15];
  }
  return text;
}

}  // namespace

uint8_t checksum_of(std::span<const uint8_t> bytes, std::size_t count) {
  const auto summed = bytes.first(std::min(bytes.size(), count));
  return static_cast<uint8_t>(-std::accumulate(summed.begin(), summed.end(), 0));
}

void edid_block_t::clear() { std::fill(data.begin(), data.end(), uint8_t{0}); }

void edid_block_t::set_byte(uint8_t index, uint8_t value) {
  if (index < data.size()) {
    data[index] = value;
  }
}

void edid_block_t::set_bits(uint8_t index, uint8_t mask, uint8_t value) {
  set_byte(index, static_cast<uint8_t>((byte(index) & ~mask) | (value & mask)));
}

void edid_block_t::set_mask(uint8_t index, uint8_t mask, bool on) { set_bits(index, mask, on ? mask : uint8_t{0}); }

std::ostream& operator<<(std::ostream& out, const edid_block_t& block) {
  const auto bytes = block.bytes();
  for (std::size_t row = 0; row < bytes.size() / row_size; ++row) {
    out << row_text(row + 1, bytes.subspan(row * row_size, row_size)) << '\n';
  }
  return out;
}

}  // namespace edid_lib
