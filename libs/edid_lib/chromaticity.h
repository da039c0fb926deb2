#pragma once

#include <cstdint>
#include <iosfwd>
#include <span>

namespace edid_lib {

/// The colours that a display makes: CIE 1931 coordinates, 0 to 1, and its gamma.
struct chromaticity_t {
  float red_x = 0;
  float red_y = 0;
  float green_x = 0;
  float green_y = 0;
  float blue_x = 0;
  float blue_y = 0;
  float white_x = 0;
  float white_y = 0;
  float gamma = 0;

  bool operator==(const chromaticity_t&) const = default;
};

/// Writes "Red: { 0.64, 0.33 }  Green: { 0.3, 0.6 }  Blue: { 0.15, 0.06 }  White: { 0.3127, 0.329 }  Gamma: 2.2".
std::ostream& operator<<(std::ostream& out, const chromaticity_t& chromaticity);

/// A coordinate is a binary fraction of 10 bits. In bytes 25 to 34 of the base block (E-EDID 1.4, section 3.7), the
/// first two have the low two bits of red, green, then blue, white, x before y, and one byte for each follows with the
/// high eight. Gamma stands elsewhere and is left alone.
inline constexpr std::size_t chromaticity_size = 10;
void read_chromaticity(std::span<const uint8_t, chromaticity_size> bytes, chromaticity_t& chromaticity);
void write_chromaticity(const chromaticity_t& chromaticity, std::span<uint8_t, chromaticity_size> bytes);

}  // namespace edid_lib
