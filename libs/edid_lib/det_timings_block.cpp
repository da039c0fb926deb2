#include "edid_lib/det_timings_block.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "edid_lib/timing_lookup.h"
#include "edid_lib/visitor.h"

namespace edid_lib {
namespace {

constexpr uint8_t padding = 1;
constexpr uint32_t smallest_side = 64;

using entry_t = std::span<const uint8_t, det_timings_block_t::entry_size>;

/// One direction of an entry, in pixels or lines.
struct span_t {
  uint32_t active;
  uint32_t blanking;
  uint32_t sync_offset;
  uint32_t sync_width;

  bool usable() const { return active >= smallest_side && sync_width != 0; }
  uint32_t sync_start() const { return active + sync_offset; }
  uint32_t sync_end() const { return sync_start() + sync_width; }

  /// Some displays tell a sync pulse that ends behind the line; they mean a line that is long enough.
  uint32_t total() const {
    const uint32_t told = active + blanking;
    return sync_end() > told ? sync_end() + 1 : told;
  }
};

/// `low` with `count` bits of `high`, from bit `shift` on, above its `low_bits` own.
uint32_t joined(uint32_t low, uint32_t low_bits, uint32_t high, uint32_t shift, uint32_t count) {
  return low | ((high >> shift) & ((1U << count) - 1)) << low_bits;
}

span_t horizontal(entry_t entry) {
  return {joined(entry[2], 8, entry[4], 4, 4), joined(entry[3], 8, entry[4], 0, 4),
          joined(entry[8], 8, entry[11], 6, 2), joined(entry[9], 8, entry[11], 4, 2)};
}

span_t vertical(entry_t entry) {
  return {joined(entry[5], 8, entry[7], 4, 4), joined(entry[6], 8, entry[7], 0, 4),
          joined(entry[10] >> 4U, 4, entry[11], 2, 2), joined(entry[10] & 15U, 4, entry[11], 0, 2)};
}

struct frame_size_t {
  uint32_t h_active;
  uint32_t v_active;
};

/// The interlaced formats whose entries describe a field; others are taken to describe the frame.
constexpr frame_size_t field_described[] = {{1920, 1080}, {720, 480},  {1440, 480}, {2880, 480},
                                            {720, 576},   {1440, 576}, {2880, 576}};

bool describes_field(const vid_timing_t& timing) {
  return std::any_of(std::begin(field_described), std::end(field_described), [&](const frame_size_t& frame) {
    return timing.h_active == frame.h_active && timing.v_active == frame.v_active / 2;
  });
}

void make_interlaced(vid_timing_t& timing) {
  if (describes_field(timing)) {
    timing.v_active *= 2;
    timing.v_sync_start *= 2;
    timing.v_sync_end *= 2;
    timing.v_total = timing.v_total * 2 + 1;
  }
  timing.flags |= interlaced_scan;
}

vid_timing_t timing_of(entry_t entry, const span_t& h, const span_t& v) {
  vid_timing_t timing;
  timing.pixel_clock_khz = (entry[0] | uint32_t{entry[1]} << 8) * 10;
  timing.h_active = h.active;
  timing.h_sync_start = h.sync_start();
  timing.h_sync_end = h.sync_end();
  timing.h_total = h.total();
  timing.v_active = v.active;
  timing.v_sync_start = v.sync_start();
  timing.v_sync_end = v.sync_end();
  timing.v_total = v.total();
  if ((entry[17] & 0x80) != 0) {
    make_interlaced(timing);
  }
  timing.flags |= (entry[17] & 0x2) != 0 ? positive_hsync : negative_hsync;
  timing.flags |= (entry[17] & 0x4) != 0 ? positive_vsync : negative_vsync;
  return timing;
}

std::optional<vid_resolution_t> decode(entry_t entry) {
  const span_t h = horizontal(entry);
  const span_t v = vertical(entry);
  const bool has_clock = entry[0] != 0 || entry[1] != 0;
  if (!has_clock || !h.usable() || !v.usable()) {
    return std::nullopt;
  }
  vid_resolution_t mode(timing_of(entry, h, v));
  mode.type = classify(mode);
  mode.location = timing_location_t::detailed_timing_descriptor;
  mode.h_image_mm = joined(entry[12], 8, entry[14], 4, 4);
  mode.v_image_mm = joined(entry[13], 8, entry[14], 0, 4);
  mode.h_border = entry[15];
  mode.v_border = entry[16];
  return mode;
}

}  // namespace

det_timings_block_t::det_timings_block_t(std::span<const uint8_t> block_bytes, uint32_t block_offset, uint32_t entries)
    : edid_block_t(block_bytes), position(block_offset), room(entries) {
  data.resize(room * entry_size, padding);
}

void det_timings_block_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

std::vector<vid_resolution_t> det_timings_block_t::modes() const {
  std::vector<vid_resolution_t> found;
  for (uint32_t i = 0; i < room; ++i) {
    if (auto mode = decode(entry_t(data.data() + i * entry_size, entry_size))) {
      found.push_back(*std::move(mode));
    }
  }
  return found;
}

}  // namespace edid_lib
