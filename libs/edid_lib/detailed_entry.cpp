#include "edid_lib/detailed_entry.h"

#include <algorithm>
#include <iterator>

#include "edid_lib/timing_lookup.h"

namespace edid_lib {
namespace {

constexpr uint32_t smallest_side = 64;

constexpr int32_t largest_side = 4095;
constexpr uint8_t interlaced_mask = 0x80;
constexpr uint8_t positive_vsync_mask = 0x4;
constexpr uint8_t positive_hsync_mask = 0x2;
constexpr uint8_t separate_sync = 0x18;

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

span_t horizontal(detailed_entry_view_t entry) {
  return {joined(entry[2], 8, entry[4], 4, 4), joined(entry[3], 8, entry[4], 0, 4),
          joined(entry[8], 8, entry[11], 6, 2), joined(entry[9], 8, entry[11], 4, 2)};
}

span_t vertical(detailed_entry_view_t entry) {
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

vid_timing_t timing_of(detailed_entry_view_t entry, const span_t& h, const span_t& v) {
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
  if ((entry[17] & interlaced_mask) != 0) {
    make_interlaced(timing);
  }
  timing.flags |= (entry[17] & positive_hsync_mask) != 0 ? positive_hsync : negative_hsync;
  timing.flags |= (entry[17] & positive_vsync_mask) != 0 ? positive_vsync : negative_vsync;
  return timing;
}

uint8_t low(uint32_t value) { return static_cast<uint8_t>(value); }

/// The `count` bits of `value` above its lowest `low_bits`, from bit `shift` on.
uint32_t upper(uint32_t value, uint32_t low_bits, uint32_t count, uint32_t shift) {
  return ((value >> low_bits) & ((1U << count) - 1)) << shift;
}

uint8_t upper_nibbles(uint32_t left, uint32_t right) { return low(upper(left, 8, 4, 4) | upper(right, 8, 4, 0)); }

uint8_t flags_byte(uint32_t flags) {
  return low((flags & positive_hsync) * positive_hsync_mask | (flags & positive_vsync) |
             (flags & interlaced_scan) << 3 | separate_sync);
}

void store(detailed_entry_t& entry, const span_t& h, const span_t& v) {
  entry[2] = low(h.active);
  entry[3] = low(h.blanking);
  entry[4] = upper_nibbles(h.active, h.blanking);
  entry[5] = low(v.active);
  entry[6] = low(v.blanking);
  entry[7] = upper_nibbles(v.active, v.blanking);
  entry[8] = low(h.sync_offset);
  entry[9] = low(h.sync_width);
  entry[10] = low((v.sync_offset & 15) << 4 | (v.sync_width & 15));
  entry[11] = low(upper(h.sync_offset, 8, 2, 6) | upper(h.sync_width, 8, 2, 4) | upper(v.sync_offset, 4, 2, 2) |
                  upper(v.sync_width, 4, 2, 0));
}

}  // namespace

std::optional<vid_resolution_t> decode_detailed_entry(detailed_entry_view_t entry) {
  const span_t h = horizontal(entry);
  const span_t v = vertical(entry);
  if (!has_clock(entry) || !h.usable() || !v.usable()) {
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

std::optional<detailed_entry_t> encode_detailed_entry(const vid_resolution_t& mode) {
  const vid_timing_t timing = resolve_timing(mode).timing;
  if (!timing.known() || mode.width > largest_side || mode.height > largest_side) {
    return std::nullopt;
  }
  detailed_entry_t entry{};
  entry[0] = low(timing.pixel_clock_khz / 10);
  entry[1] = low(timing.pixel_clock_khz / 10 >> 8);
  store(entry,
        {timing.h_active, timing.h_total - timing.h_active, timing.h_sync_start - timing.h_active,
         timing.h_sync_end - timing.h_sync_start},
        {timing.v_active, timing.v_total - timing.v_active, timing.v_sync_start - timing.v_active,
         timing.v_sync_end - timing.v_sync_start});
  entry[12] = low(mode.h_image_mm);
  entry[13] = low(mode.v_image_mm);
  entry[14] = upper_nibbles(mode.h_image_mm, mode.v_image_mm);
  // Both are the horizontal one, deliberately.
  entry[15] = low(mode.h_border);
  entry[16] = low(mode.h_border);
  entry[17] = flags_byte(timing.flags);
  return entry;
}

}  // namespace edid_lib
