#include "edid_lib/chromaticity.h"

#include <iterator>
#include <ostream>

namespace edid_lib {
namespace {

constexpr uint32_t coordinate_bits = 10;
constexpr float tolerance = 1e-6F;

/// In the order of the bytes.
constexpr float chromaticity_t::*coordinates[] = {
    &chromaticity_t::red_x,  &chromaticity_t::red_y,  &chromaticity_t::green_x, &chromaticity_t::green_y,
    &chromaticity_t::blue_x, &chromaticity_t::blue_y, &chromaticity_t::white_x, &chromaticity_t::white_y,
};

float from_bits(uint32_t bits) { return static_cast<float>(bits) / static_cast<float>(1U << coordinate_bits); }

/// The greatest fraction that is not above `value`, but for what a float's last digits may be off.
uint32_t to_bits(float value) {
  uint32_t bits = 0;
  for (uint32_t bit = 1U << (coordinate_bits - 1); bit != 0; bit >>= 1) {
    if (from_bits(bits | bit) - value <= tolerance) {
      bits |= bit;
    }
  }
  return bits;
}

constexpr std::size_t low_byte_of(std::size_t coordinate) { return coordinate / 4; }
constexpr std::size_t low_shift_of(std::size_t coordinate) { return 6 - coordinate % 4 * 2; }
constexpr std::size_t high_byte_of(std::size_t coordinate) { return 2 + coordinate; }

}  // namespace

void read_chromaticity(std::span<const uint8_t, chromaticity_size> bytes, chromaticity_t& chromaticity) {
  for (std::size_t i = 0; i < std::size(coordinates); ++i) {
    const uint32_t low = (bytes[low_byte_of(i)] >> low_shift_of(i)) & 3U;
    chromaticity.*coordinates[i] = from_bits(uint32_t{bytes[high_byte_of(i)]} << 2 | low);
  }
}

void write_chromaticity(const chromaticity_t& chromaticity, std::span<uint8_t, chromaticity_size> bytes) {
  bytes[0] = 0;
  bytes[1] = 0;
  for (std::size_t i = 0; i < std::size(coordinates); ++i) {
    const uint32_t bits = to_bits(chromaticity.*coordinates[i]);
    bytes[low_byte_of(i)] = static_cast<uint8_t>(bytes[low_byte_of(i)] | (bits & 3) << low_shift_of(i));
    bytes[high_byte_of(i)] = static_cast<uint8_t>(bits >> 2);
  }
}

std::ostream& operator<<(std::ostream& out, const chromaticity_t& c) {
  return out << "Red: { " << c.red_x << ", " << c.red_y << " }  "
             << "Green: { " << c.green_x << ", " << c.green_y << " }  "
             << "Blue: { " << c.blue_x << ", " << c.blue_y << " }  "
             << "White: { " << c.white_x << ", " << c.white_y << " }  "
             << "Gamma: " << c.gamma;
}

}  // namespace edid_lib
