#include <algorithm>
#include <cmath>
#include <iterator>

#include "edid_lib/edid_base.h"

namespace edid_lib {
namespace {

constexpr uint8_t header[] = {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};

constexpr uint8_t manufacturer_at = 8;
constexpr uint8_t product_at = 10;
constexpr uint8_t serial_at = 12;
constexpr uint8_t week_at = 16;
constexpr uint8_t year_at = 17;
constexpr uint8_t version_at = 18;
constexpr uint8_t revision_at = 19;
constexpr uint8_t input_at = 20;
constexpr uint8_t gamma_at = 23;
constexpr uint8_t features_at = 24;
constexpr std::size_t chromaticity_at = 25;

constexpr std::size_t letters = 3;
constexpr uint32_t bits_a_letter = 5;
constexpr uint32_t letter_mask = 31;
constexpr char before_a = '@';

constexpr uint32_t last_week = 53;
constexpr uint32_t first_year = 1990;
constexpr uint32_t last_year = first_year + 255;

constexpr uint8_t depth_shift = 4;
constexpr uint8_t depth_mask = 7 << depth_shift;
constexpr uint8_t interface_mask = 15;
constexpr uint8_t interface_end = 6;

constexpr float smallest_gamma = 1.0F;
constexpr float largest_gamma = 3.54F;

constexpr uint8_t color_type_shift = 3;
constexpr uint8_t color_type_mask = 3 << color_type_shift;

/// The two colour type bits of byte 24 by colour type, in place.
struct color_bits_t {
  uint8_t edid_1_3;
  uint8_t edid_1_4;
};

constexpr color_bits_t color_bits[] = {{0, 0}, {8, 0}, {16, 0}, {8, 8}, {8, 16}, {8, 24}};
constexpr color_bits_t undefined_color_bits = {8, 0};
constexpr uint8_t color_type_of_any_version = 3;

/// The code in byte 20 of a colour depth of 6 to 16 bits.
constexpr uint8_t depth_codes[] = {1, 0, 2, 0, 3, 0, 4, 0, 5, 0, 6};
constexpr uint8_t smallest_depth = 6;

uint32_t letter_shift(std::size_t place) { return bits_a_letter * static_cast<uint32_t>(letters - 1 - place); }

}  // namespace

bool edid_base_t::has_header() const {
  return data.size() >= std::size(header) && std::equal(std::begin(header), std::end(header), data.begin());
}

void edid_base_t::set_header() { std::copy_n(header, std::min(std::size(header), data.size()), data.begin()); }

uint32_t edid_base_t::little_endian(uint8_t index, uint8_t count) const {
  uint32_t value = 0;
  for (uint8_t i = 0; i < count; ++i) {
    value |= uint32_t{byte(static_cast<uint8_t>(index + i))} << 8 * i;
  }
  return value;
}

void edid_base_t::set_little_endian(uint8_t index, uint8_t count, uint32_t value) {
  for (uint8_t i = 0; i < count; ++i) {
    set_byte(static_cast<uint8_t>(index + i), static_cast<uint8_t>(value >> 8 * i));
  }
}

std::string edid_base_t::manufacturer_id() const {
  const uint32_t bits = uint32_t{byte(manufacturer_at)} << 8 | byte(manufacturer_at + 1);
  std::string id(letters, before_a);
  for (std::size_t i = 0; i < letters; ++i) {
    id[i] = static_cast<char>(before_a + static_cast<char>(bits >> letter_shift(i) & letter_mask));
  }
  return id;
}

void edid_base_t::set_manufacturer_id(std::string_view id) {
  uint32_t bits = 0;
  for (std::size_t i = 0; i < std::min(id.size(), letters); ++i) {
    bits |= (static_cast<uint8_t>(id[i]) & letter_mask) << letter_shift(i);
  }
  set_byte(manufacturer_at, static_cast<uint8_t>(bits >> 8));
  set_byte(manufacturer_at + 1, static_cast<uint8_t>(bits));
}

uint16_t edid_base_t::product_code() const { return static_cast<uint16_t>(little_endian(product_at, 2)); }

void edid_base_t::set_product_code(uint16_t code) { set_little_endian(product_at, 2, code); }

uint32_t edid_base_t::serial_number() const { return little_endian(serial_at, 4); }

std::string edid_base_t::serial_number_text() const { return std::to_string(serial_number()); }

void edid_base_t::set_serial_number(uint32_t number) { set_little_endian(serial_at, 4, number); }

void edid_base_t::set_week(uint32_t week) {
  set_byte(week_at, week >= 1 && week <= last_week ? static_cast<uint8_t>(week) : uint8_t{0});
}

uint32_t edid_base_t::year() const { return byte(year_at) + first_year; }

void edid_base_t::set_year(uint32_t year) {
  set_byte(year_at, static_cast<uint8_t>(std::clamp(year, first_year, last_year) - first_year));
}

void edid_base_t::set_version(uint8_t /*version*/) { set_byte(version_at, 1); }

void edid_base_t::set_revision(uint8_t revision) {
  set_byte(revision_at, revision == 4 ? uint8_t{4} : uint8_t{3});
  on_revision_change();
}

bool edid_base_t::is_version(uint8_t version_number, uint8_t revision_number) const {
  return version() == version_number && revision() == revision_number;
}

void edid_base_t::on_revision_change() {
  if (is_version(1, 3)) {
    and_mask(input_at, 0x81);
    set_color_type(color_type());
  }
}

uint8_t edid_base_t::color_depth() const {
  const auto code = static_cast<uint8_t>((byte(input_at) & depth_mask) >> depth_shift);
  return is_version(1, 4) && code >= 1 && code <= 6 ? static_cast<uint8_t>(2 * code + 4) : uint8_t{0};
}

void edid_base_t::set_color_depth(uint8_t depth) {
  if (!is_version(1, 4)) {
    return;
  }
  const std::size_t index = depth - std::size_t{smallest_depth};
  const uint8_t code = index < std::size(depth_codes) ? depth_codes[index] : uint8_t{0};
  set_bits(input_at, depth_mask, static_cast<uint8_t>(code << depth_shift));
}

uint8_t edid_base_t::digital_interface() const {
  const auto number = static_cast<uint8_t>(byte(input_at) & interface_mask);
  return is_version(1, 4) && number < interface_end ? number : uint8_t{0};
}

void edid_base_t::set_digital_interface(uint8_t interface_number) {
  if (is_version(1, 4)) {
    set_bits(input_at, interface_mask, interface_number < interface_end ? interface_number : uint8_t{0});
  }
}

float edid_base_t::gamma() const { return static_cast<float>(byte(gamma_at) + 100) / 100.0F; }

void edid_base_t::set_gamma(float gamma) {
  if (gamma >= smallest_gamma && gamma <= largest_gamma) {
    // Rounded, so that a gamma that was read is stored as it was.
    set_byte(gamma_at, static_cast<uint8_t>(std::lround(gamma * 100.0F - 100.0F)));
  }
}

uint8_t edid_base_t::color_type() const {
  const auto bits = static_cast<uint8_t>((byte(features_at) & color_type_mask) >> color_type_shift);
  if (is_version(1, 3)) {
    return bits < 3 ? bits : uint8_t{6};
  }
  return bits == 0 ? uint8_t{1} : static_cast<uint8_t>(bits + 2);
}

void edid_base_t::set_color_type(uint8_t type) {
  and_mask(features_at, static_cast<uint8_t>(~color_type_mask));
  const color_bits_t bits = type < std::size(color_bits) ? color_bits[type] : undefined_color_bits;
  if (is_version(1, 3) || type == color_type_of_any_version) {
    or_mask(features_at, bits.edid_1_3);
  } else if (is_version(1, 4)) {
    or_mask(features_at, bits.edid_1_4);
  }
}

chromaticity_t edid_base_t::chromaticity() const {
  chromaticity_t chromaticity;
  if (data.size() >= chromaticity_at + chromaticity_size) {
    read_chromaticity(bytes().subspan<chromaticity_at, chromaticity_size>(), chromaticity);
    chromaticity.gamma = gamma();
  }
  return chromaticity;
}

void edid_base_t::set_chromaticity(const chromaticity_t& chromaticity) {
  if (data.size() >= chromaticity_at + chromaticity_size) {
    write_chromaticity(chromaticity, std::span(data).subspan<chromaticity_at, chromaticity_size>());
    set_gamma(chromaticity.gamma);
  }
}

}  // namespace edid_lib
