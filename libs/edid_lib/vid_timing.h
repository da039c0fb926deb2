#pragma once

#include <cstdint>
#include <iosfwd>

namespace edid_lib {

/// Bits of `vid_timing_t::flags`.
enum timing_flags_t : uint32_t {
  positive_hsync = 0x1,
  negative_hsync = 0x2,
  positive_vsync = 0x4,
  negative_vsync = 0x8,
  interlaced_scan = 0x10,
  double_clock = 0x1000,
};

/// A raw video timing. Positions are absolute, in pixels or in lines of the whole frame from the start of the active
/// area, not porch widths. All zero: no known timing.
struct vid_timing_t {
  uint32_t pixel_clock_khz = 0;
  uint32_t h_active = 0;
  uint32_t h_sync_start = 0;
  uint32_t h_sync_end = 0;
  uint32_t h_total = 0;
  uint32_t v_active = 0;
  uint32_t v_sync_start = 0;
  uint32_t v_sync_end = 0;
  uint32_t v_total = 0;
  uint32_t flags = 0;

  bool operator==(const vid_timing_t&) const = default;

  /// Whether any of the ten fields is set.
  bool known() const { return *this != vid_timing_t{}; }
};

/// Writes "vid_timing_t{ " and the ten fields in their order, each followed by a blank, then "}".
std::ostream& operator<<(std::ostream& out, const vid_timing_t& timing);

/// Reads what `operator<<` writes; the name may stand in any case. Another name leaves `timing` as it is. With fewer
/// than ten numbers the other fields keep their values; a word that is no number makes its field 0 and ends the
/// numbers.
std::istream& operator>>(std::istream& in, vid_timing_t& timing);

}  // namespace edid_lib
