#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace bench {

/// What libdisplay-info does with an EDID: parses it and walks its timings, standard timings, established timings, and
/// the timings and video codes of its CTA extensions. It neither repairs, orders nor filters. Gives how many there are;
/// none for bytes that it does not take for an EDID.
std::size_t walk_with_display_info(std::span<const uint8_t> edid);

}  // namespace bench
