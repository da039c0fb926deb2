#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "edid_lib/vid_resolution.h"

namespace edid_lib {

inline constexpr std::size_t detailed_entry_size = 18;

/// The 18 bytes of a detailed timing; `det_timings_block_t` has their layout.
using detailed_entry_t = std::array<uint8_t, detailed_entry_size>;
using detailed_entry_view_t = std::span<const uint8_t, detailed_entry_size>;

/// Whether there is a pixel clock. Without one the entry is free, or a display descriptor.
inline bool has_clock(detailed_entry_view_t entry) { return entry[0] != 0 || entry[1] != 0; }

/// The mode that an entry tells; nothing if it has no clock or no sync pulse, or is smaller than 64 by 64.
std::optional<vid_resolution_t> decode_detailed_entry(detailed_entry_view_t entry);

/// The entry that tells `mode`: its own timing, or the one that the tables have for it, and its image size. Numbers
/// lose the high bits that an entry has no room for. Lines are those of the frame, also of interlaced modes. Both
/// border bytes are the horizontal border; that is deliberate, the vertical one is not told. A clock below 10 kHz, or
/// one that loses all of its bits, makes an entry that tells no clock. Nothing for a mode without timing or larger than
/// 4095 on a side.
std::optional<detailed_entry_t> encode_detailed_entry(const vid_resolution_t& mode);

}  // namespace edid_lib
