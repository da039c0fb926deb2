#include "edid_lib/edid_base.h"

#include <algorithm>
#include <iterator>

#include "edid_lib/visitor.h"

namespace edid_lib {
namespace {

constexpr std::size_t block_size = 128;
constexpr uint8_t header[] = {0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00};

constexpr uint8_t version_at = 18;
constexpr uint8_t revision_at = 19;
constexpr uint8_t input_at = 20;
constexpr uint8_t digital_mask = 0x80;
constexpr uint8_t features_at = 24;
constexpr uint8_t preferred_native_mask = 0x2;
constexpr uint8_t color_type_shift = 3;
constexpr uint8_t color_type_mask = 3 << color_type_shift;

constexpr std::size_t established_at = 35;
constexpr std::size_t standard_at = 38;
constexpr std::size_t detailed_at = 54;
constexpr std::size_t second_detailed_at = 72;
constexpr std::size_t descriptors_end = 126;
constexpr std::size_t entry_size = det_timings_block_t::entry_size;

/// The two colour type bits of byte 24 by colour type, in place.
struct color_bits_t {
  uint8_t edid_1_3;
  uint8_t edid_1_4;
};

constexpr color_bits_t color_bits[] = {{0, 0}, {8, 0}, {16, 0}, {8, 8}, {8, 16}, {8, 24}};
constexpr color_bits_t undefined_color_bits = {8, 0};
constexpr uint8_t color_type_of_any_version = 3;

}  // namespace

edid_base_t::edid_base_t(std::span<const uint8_t> edid_bytes)
    : edid_block_t(edid_bytes.first(std::min(edid_bytes.size(), block_size))),
      established({}),
      standard({}),
      detailed({}, detailed_at, 2) {
  data.resize(block_size, 0);
  repair();
  parse_blocks();
}

void edid_base_t::repair() {
  std::copy(std::begin(header), std::end(header), data.begin());
  if (version() != 1 && version() != 2) {
    set_byte(version_at, 1);
  }
  if (revision() < 2 || revision() > 4) {
    set_byte(revision_at, 3);
    on_revision_change();
  }
  or_mask(input_at, digital_mask);
  or_mask(features_at, preferred_native_mask);
}

void edid_base_t::parse_blocks() {
  const std::span<const uint8_t> all(data);
  established = est_timings_block_t(all.subspan(established_at, standard_at - established_at));
  standard = std_timings_block_t(all.subspan(standard_at, detailed_at - standard_at));
  // A descriptor has zeros where a timing has its clock.
  const bool two_timings = data[second_detailed_at] != 0 || data[second_detailed_at + 1] != 0;
  const uint32_t timings = two_timings ? 2 : 1;
  detailed = det_timings_block_t(all.subspan(detailed_at, timings * entry_size), detailed_at, timings);
  for (std::size_t at = detailed_at + timings * entry_size; at < descriptors_end; at += entry_size) {
    descriptor_list.push_back(make_base_descriptor(static_cast<uint32_t>(at), all.subspan(at, entry_size)));
  }
}

bool edid_base_t::valid() const {
  return has_mask(features_at, preferred_native_mask) && established.valid() &&
         std::all_of(descriptor_list.begin(), descriptor_list.end(), [](const auto& block) { return block->valid(); });
}

void edid_base_t::accept(visitor_t* visitor, bool forward) {
  if (visitor == nullptr) {
    return;
  }
  if (forward) {
    visitor->visit(this, forward);
    established.accept(visitor, forward);
    standard.accept(visitor, forward);
    detailed.accept(visitor, forward);
    std::for_each(descriptor_list.begin(), descriptor_list.end(),
                  [&](const auto& block) { block->accept(visitor, forward); });
    return;
  }
  std::for_each(descriptor_list.rbegin(), descriptor_list.rend(),
                [&](const auto& block) { block->accept(visitor, forward); });
  detailed.accept(visitor, forward);
  standard.accept(visitor, forward);
  established.accept(visitor, forward);
  visitor->visit(this, forward);
}

bool edid_base_t::is_version(uint8_t version_number, uint8_t revision_number) const {
  return version() == version_number && revision() == revision_number;
}

void edid_base_t::on_revision_change() {
  if (is_version(1, 3)) {
    and_mask(input_at, digital_mask | 1);
    set_color_type(color_type());
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

}  // namespace edid_lib
