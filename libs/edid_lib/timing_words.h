#pragma once

#include <string_view>

#include "edid_lib/vid_resolution.h"

namespace edid_lib {

/// "CTA Timing"; "undefined type" for a value without a text of its own.
std::string_view text_of(timing_type_t type);

/// "Detailed Timing Descriptor"; "undefined location" for a value without a text of its own.
std::string_view text_of(timing_location_t location);

/// The value of just this text; undefined for any other.
timing_type_t timing_type_of(std::string_view text);
timing_location_t timing_location_of(std::string_view text);

}  // namespace edid_lib
