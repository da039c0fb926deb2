#include <cmath>
#include <sstream>
#include <string>

#include "edid_lib/manufacturer_names.h"
#include "fuzz/edid/support.h"

namespace fuzz::edid {
namespace {

using edid_lib::chromaticity_t;
using edid_lib::edid_base_t;

void check_numbers(edid_base_t& base, input_t& input) {
  const auto code = static_cast<uint16_t>(take_number(input));
  base.set_product_code(code);
  require(base.product_code() == code, "the product code is stored");
  const uint32_t serial = take_number(input);
  base.set_serial_number(serial);
  require(base.serial_number() == serial && base.serial_number_text() == std::to_string(serial),
          "the serial number is stored");
  const uint32_t week = input.take_byte();
  base.set_week(week);
  require(base.week() == (week <= 53 ? week : 0), "only weeks of a year are stored");
  const uint32_t year = take_number(input) % 4096;
  base.set_year(year);
  require(base.year() == std::clamp<uint32_t>(year, 1990, 2245), "the year is stored as far as it goes");
  const uint8_t size = input.take_byte();
  base.set_h_size_cm(size);
  base.set_v_size_cm(static_cast<uint8_t>(size + 1));
  base.set_extension_count(size);
  require(base.h_size_cm() == size && base.v_size_cm() == static_cast<uint8_t>(size + 1), "the size is stored");
  require(base.extension_count() == size, "the number of extensions is stored");
}

void check_manufacturer(edid_base_t& base, input_t& input) {
  const std::string_view letters = input.take(input.take_byte() % 5);
  base.set_manufacturer_id(letters);
  std::string expected(3, '@');
  for (std::size_t i = 0; i < std::min<std::size_t>(letters.size(), 3); ++i) {
    expected[i] = static_cast<char>('@' + (letters[i] & 31));
  }
  require(base.manufacturer_id() == expected, "three letters are stored by their low bits");
  require(!edid_lib::manufacturer_name(expected).empty(), "every manufacturer has a name");
}

struct flag_t {
  bool (edid_base_t::*get)() const;
  void (edid_base_t::*set)(bool);
};

constexpr flag_t flags[] = {
    {&edid_base_t::standby, &edid_base_t::set_standby},
    {&edid_base_t::suspend, &edid_base_t::set_suspend},
    {&edid_base_t::active_off, &edid_base_t::set_active_off},
    {&edid_base_t::srgb_default, &edid_base_t::set_srgb_default},
    {&edid_base_t::preferred_native, &edid_base_t::set_preferred_native},
    {&edid_base_t::continuous_frequency, &edid_base_t::set_continuous_frequency},
    {&edid_base_t::digital_input, &edid_base_t::set_digital_input},
};

void check_flags(edid_base_t& base, input_t& input) {
  const uint8_t wanted = input.take_byte();
  uint8_t left = wanted;
  for (const flag_t& flag : flags) {
    (base.*flag.set)((left & 1) != 0);
    left = static_cast<uint8_t>(left >> 1);
  }
  left = wanted;
  for (const flag_t& flag : flags) {
    require((base.*flag.get)() == ((left & 1) != 0), "a flag is stored, and no other by it");
    left = static_cast<uint8_t>(left >> 1);
  }
}

bool is_1_4(const edid_base_t& base) { return base.version() == 1 && base.revision() == 4; }

/// Depth and interface are what EDID 1.4 has and others do not.
void check_input_definition(edid_base_t& base, input_t& input) {
  const auto before = copy_of(base.bytes());
  const uint8_t depth = input.take_byte() % 20;
  base.set_color_depth(depth);
  const bool known_depth = depth >= 6 && depth <= 16 && depth % 2 == 0;
  require(base.color_depth() == (is_1_4(base) && known_depth ? depth : 0), "a colour depth is stored in EDID 1.4");
  const uint8_t number = input.take_byte() % 20;
  base.set_digital_interface(number);
  require(base.digital_interface() == (is_1_4(base) && number < 6 ? number : 0), "an interface is stored in EDID 1.4");
  require(is_1_4(base) || same_bytes(base.bytes(), before), "other versions are left alone");
  base.set_color_type(input.take_byte() % 8);
  require(base.color_type() <= 6, "a colour type is one of those that can be set");
}

void check_gamma(edid_base_t& base, input_t& input) {
  const float before = base.gamma();
  const float gamma = static_cast<float>(input.take_byte()) / 50.0F;
  base.set_gamma(gamma);
  const bool stored = gamma >= 1.0F && gamma <= 3.54F;
  require(stored ? std::fabs(base.gamma() - gamma) < 0.0051F : base.gamma() == before, "a gamma in range is stored");
}

void check_chromaticity(edid_base_t& base, input_t& input) {
  chromaticity_t wanted;
  wanted.red_x = static_cast<float>(input.take_byte()) / 128.0F - 0.5F;
  wanted.white_y = static_cast<float>(take_number(input)) / 4294967296.0F;
  base.set_chromaticity(wanted);
  const chromaticity_t stored = base.chromaticity();
  const auto is_near = [](float is, float should) {
    const float within = std::clamp(should, 0.0F, 1023.0F / 1024.0F);
    return is <= within + 2e-6F && is >= within - 1.0F / 1024.0F;
  };
  require(is_near(stored.red_x, wanted.red_x) && is_near(stored.white_y, wanted.white_y) && stored.blue_x == 0,
          "a coordinate is stored as the fraction below it");
  std::ostringstream text;
  text << stored;
  require(text.str().starts_with("Red: { "), "chromaticity has a text");
}

/// What was read is what its setter stores, wherever the bytes meant something.
void check_stored_again(edid_base_t base) {
  const auto before = copy_of(base.bytes());
  base.set_product_code(base.product_code());
  base.set_serial_number(base.serial_number());
  base.set_year(base.year());
  base.set_gamma(base.gamma());
  base.set_chromaticity(base.chromaticity());
  for (const flag_t& flag : flags) {
    (base.*flag.set)((base.*flag.get)());
  }
  const bool has_color_type = base.version() == 1 && base.revision() >= 3 && base.color_type() != 6;
  if (has_color_type) {
    base.set_color_type(base.color_type());
  }
  base.set_header();
  require(same_bytes(base.bytes(), before), "what was read is stored as it was");
  const std::string id = base.manufacturer_id();
  base.set_manufacturer_id(id);
  require(base.manufacturer_id() == id, "a manufacturer that was read is stored");
}

void check_version(edid_base_t& base, input_t& input) {
  const uint8_t revision = input.take_byte() % 6;
  base.set_version(revision);
  base.set_revision(revision);
  require(base.version() == 1 && base.revision() == (revision == 4 ? 4 : 3), "EDID 1.3 and 1.4 can be written");
  require(base.revision() == 4 || (base.bytes()[20] & 0x7E) == 0, "EDID 1.3 has no depth and interface");
}

/// A text descriptor's setter and getter.
template <typename descriptor_t>
void check_text(uint32_t offset, std::span<const uint8_t> bytes, input_t& input) {
  descriptor_t descriptor(offset, bytes);
  const bool has_tag = bytes.size() > 3;
  require(descriptor.valid() == (!has_tag || bytes[3] == descriptor_t::own_tag), "a text is valid by its tag");
  require(has_tag || descriptor.text().empty(), "without bytes a text is empty");
  require(descriptor.text().size() <= 13, "a text has room for 13 characters");
  std::string expected(input.take_text());
  descriptor.set_text(expected);
  expected.resize(std::min<std::size_t>(expected.size(), 12));
  expected.resize(expected.find_last_not_of(" \t\n\v\f\r") + 1);
  require(descriptor.text() == expected, "twelve characters of a text are stored");
}

}  // namespace

void check_base_fields(edid_base_t base, input_t& input) {
  check_stored_again(base);
  check_input_definition(base, input);
  check_numbers(base, input);
  check_manufacturer(base, input);
  check_gamma(base, input);
  check_chromaticity(base, input);
  check_version(base, input);
  check_input_definition(base, input);
  check_flags(base, input);
}

void check_descriptors(const edid_base_t& base, input_t& input) {
  for (const auto& descriptor : base.descriptors()) {
    require(descriptor->size() == 18 && descriptor->length() == 18 && !descriptor->name().empty(), "a descriptor");
    require(descriptor->valid(), "a descriptor that was made by its tag is valid");
  }
  const auto bytes = take_bytes(input, input.take_byte() % 24);
  const auto made = edid_lib::make_base_descriptor(90, bytes);
  require(made->size() == 18 && made->offset() == 90 && made->valid(), "any bytes make a descriptor");
  check_text<edid_lib::monitor_name_base_block_t>(72, bytes, input);
  check_text<edid_lib::monitor_serial_base_block_t>(90, bytes, input);
  check_text<edid_lib::ascii_string_base_block_t>(108, bytes, input);
}

void check_building(input_t& input) {
  edid_base_t base;
  require(!base.has_header() && base.size() == 0, "a base block without bytes has none");
  require(base.chromaticity() == chromaticity_t{}, "nor colours");
  base.set_chromaticity({});
  base.set_week(1);
  require(base.size() == 0 && base.week() == 0, "and stores nothing");
  base.reset();
  require(base.has_header() && !base.valid() && base.detailed().count() == 0, "a base block to build up is empty");
  base.established().set(edid_lib::est_timings_block_t::required_mode(), true);
  require(base.valid(), "with the required mode it is valid");
  base.add_descriptor(nullptr);
  base.add_descriptor(edid_lib::make_base_descriptor(take_number(input) % 256, take_bytes(input, 18)));
  require(base.descriptors().size() == 1, "one descriptor was added");
  base.detailed().add(take_mode(input));
  base.standard().add(take_mode(input));
  const auto bytes = base.assemble(3);
  require(bytes.size() == 128 && sums_up(bytes) && bytes[126] == 3, "a block that was built up is whole");
}

}  // namespace fuzz::edid
