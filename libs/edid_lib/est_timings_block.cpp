#include "edid_lib/est_timings_block.h"

#include "edid_lib/default_modes.h"
#include "edid_lib/timing_tables.h"
#include "edid_lib/visitor.h"

namespace edid_lib {
namespace {

constexpr std::size_t block_size = 3;

struct bit_t {
  uint8_t byte;
  uint8_t mask;
};

/// The bits count from the lowest, but the third byte has only its highest.
bit_t bit_of(uint32_t index) {
  constexpr uint32_t index_in_third_byte = 16;
  if (index == index_in_third_byte) {
    return {2, 0x80};
  }
  return {static_cast<uint8_t>(index / 8), static_cast<uint8_t>(1U << index % 8)};
}

}  // namespace

est_timings_block_t::est_timings_block_t(std::span<const uint8_t> block_bytes) : edid_block_t(block_bytes) {
  data.resize(block_size, 0);
}

const vid_resolution_t& est_timings_block_t::required_mode() {
  static const vid_resolution_t required(resolution_of_every_display);
  return required;
}

bool est_timings_block_t::valid() const { return contains(required_mode()); }

void est_timings_block_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

bool est_timings_block_t::has_index(uint32_t index) const {
  const bit_t bit = bit_of(index);
  return has_mask(bit.byte, bit.mask);
}

bool est_timings_block_t::contains(const vid_resolution_t& mode) const {
  const timing_row_t* row = established_timings().find(mode);
  return row != nullptr && has_index(row->number);
}

void est_timings_block_t::set(const vid_resolution_t& mode, bool on) {
  if (const timing_row_t* row = established_timings().find(mode)) {
    const bit_t bit = bit_of(row->number);
    set_mask(bit.byte, bit.mask, on);
  }
}

std::vector<vid_resolution_t> est_timings_block_t::modes() const {
  std::vector<vid_resolution_t> list;
  append_modes(list);
  return list;
}

void est_timings_block_t::append_modes(std::vector<vid_resolution_t>& list) const {
  for (const timing_row_t* row : established_timings().by_key()) {
    if (has_index(row->number)) {
      vid_resolution_t& mode = list.emplace_back(row->timing);
      mode.type = timing_type_t::established;
      mode.location = timing_location_t::established_block;
    }
  }
}

}  // namespace edid_lib
