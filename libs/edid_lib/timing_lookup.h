#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "edid_lib/rate_alternative.h"
#include "edid_lib/vid_resolution.h"

namespace edid_lib {

/// What the numbered look-ups give for a mode that they do not find.
inline constexpr uint32_t no_timing_number = 0xFFFFFFFF;

/// A timing and the family it belongs to.
struct resolved_timing_t {
  vid_timing_t timing;
  timing_type_t type = timing_type_t::undefined;
};

/// CTA-861 look-up by key, then by the key of the rate alternative. A row that the mode's own timing contradicts ends
/// the look-up. `cta_timing` is all zero for other modes.
bool is_cta(const vid_resolution_t& mode);
vid_timing_t cta_timing(const vid_resolution_t& mode);
uint32_t cta_vic(const vid_resolution_t& mode);

/// Look-up of the HDMI vendor block's modes by key alone.
bool is_hdmi(const vid_resolution_t& mode);
vid_timing_t hdmi_timing(const vid_resolution_t& mode);
uint32_t hdmi_vic(const vid_resolution_t& mode);

/// DMT look-up by key, then by the key with "RB". A row that the mode's own timing contradicts ends the look-up.
bool is_dmt(const vid_resolution_t& mode);
vid_timing_t dmt_timing(const vid_resolution_t& mode);

/// The DMT look-up for a mode that is told to be of type `type`; all zero unless that is DMT.
vid_timing_t dmt_timing_for(const vid_resolution_t& mode, timing_type_t type);

/// Look-up of the modes of the established timing bits by key alone.
bool is_established(const vid_resolution_t& mode);
vid_timing_t established_timing(const vid_resolution_t& mode);
uint32_t established_index(const vid_resolution_t& mode);

/// The first of CTA, HDMI, DMT and Established that knows the mode.
timing_type_t classify(const vid_resolution_t& mode);

/// The mode's own timing and type if it has one, else what the first family of `classify` says; zeros if none does.
resolved_timing_t resolve_timing(const vid_resolution_t& mode);

/// The mode of a video identification code with its timing; nothing for a code that is not in the table.
std::optional<vid_resolution_t> cta_resolution(uint32_t vic);

/// The mode of an HDMI VIC with its timing; a mode of defaults for a number that is not in the table.
vid_resolution_t hdmi_resolution(int32_t vic);

/// All modes of a table in the order of their keys, byte by byte: those of CTA and HDMI as their numbers give them,
/// those of DMT and the established ones by their names, with timing and type.
std::vector<vid_resolution_t> all_established();
std::vector<vid_resolution_t> all_dmt();
std::vector<vid_resolution_t> all_cta();
std::vector<vid_resolution_t> all_hdmi();

}  // namespace edid_lib
