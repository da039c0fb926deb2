#include "edid_lib/base_descriptor_block.h"

#include <algorithm>

#include "edid_lib/visitor.h"

namespace edid_lib {
namespace {

constexpr std::size_t descriptor_size = 18;
constexpr std::size_t tag_offset = 3;
constexpr std::size_t text_offset = 5;
constexpr std::size_t longest_text = 12;

}  // namespace

base_descriptor_block_t::base_descriptor_block_t(uint32_t block_offset, std::span<const uint8_t> block_bytes)
    : edid_block_t(block_bytes), position(block_offset) {
  data.resize(descriptor_size, 0);
}

std::string_view base_descriptor_block_t::name() const {
  switch (tag()) {
    case 0x10:
      return "Base Dummy Descriptor";
    case 0xFA:
      return "Base Standard Timings Descriptor";
    case 0xFB:
      return "Base Color Descriptor";
    case monitor_name_base_block_t::own_tag:
      return "Base Monitor Name Descriptor";
    case 0xFD:
      return "Base Monitor Range Descriptor";
    case ascii_string_base_block_t::own_tag:
      return "Base ASCII String Descriptor";
    case monitor_serial_base_block_t::own_tag:
      return "Base Monitor Serial Descriptor";
    default:
      return tag() < 0x10 ? "Base Manufacturer Defined Descriptor" : "Undefined Base Descriptor";
  }
}

base_descriptor_block_t::base_descriptor_block_t(uint32_t block_offset, std::span<const uint8_t> block_bytes,
                                                 uint8_t text_tag)
    : base_descriptor_block_t(block_offset, block_bytes) {
  if (block_bytes.size() <= tag_offset) {
    std::fill_n(data.begin(), text_offset, uint8_t{0});
    std::fill(data.begin() + text_offset, data.end(), uint8_t{' '});
    data[tag_offset] = text_tag;
  }
}

std::string base_descriptor_block_t::text_field() const {
  if (data.size() <= text_offset) {
    return {};
  }
  std::string text(data.begin() + text_offset, data.end());
  text.resize(text.find_last_not_of(" \t\n\v\f\r") + 1);
  return text;
}

void base_descriptor_block_t::set_text_field(std::string_view text) {
  if (data.size() <= text_offset) {
    return;
  }
  const std::string_view stored = text.substr(0, longest_text);
  const auto end = std::copy(stored.begin(), stored.end(), data.begin() + text_offset);
  *end = '\n';
  std::fill(end + 1, data.end(), uint8_t{' '});
}

void base_descriptor_block_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

void monitor_name_base_block_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

void monitor_serial_base_block_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

void ascii_string_base_block_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

std::unique_ptr<base_descriptor_block_t> make_base_descriptor(uint32_t offset, std::span<const uint8_t> block_bytes) {
  switch (block_bytes.size() > tag_offset ? block_bytes[tag_offset] : uint8_t{0}) {
    case monitor_name_base_block_t::own_tag:
      return std::make_unique<monitor_name_base_block_t>(offset, block_bytes);
    case monitor_serial_base_block_t::own_tag:
      return std::make_unique<monitor_serial_base_block_t>(offset, block_bytes);
    case ascii_string_base_block_t::own_tag:
      return std::make_unique<ascii_string_base_block_t>(offset, block_bytes);
    default:
      return std::make_unique<base_descriptor_block_t>(offset, block_bytes);
  }
}

}  // namespace edid_lib
