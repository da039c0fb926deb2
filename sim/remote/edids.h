#pragma once

#include <cstdint>
#include <vector>

namespace sim {

// EDIDs of displays that do not exist, put together field by field: what the demo and the tests plug.

using edid_bytes_t = std::vector<uint8_t>;

/// 256 bytes: 3840x2160 at 60 Hz is native, further modes down to 640x480 in a CTA extension and the base block.
edid_bytes_t uhd_display_edid();

/// 128 bytes: 1920x1080 at 60 Hz and nothing else.
edid_bytes_t full_hd_display_edid();

/// 128 bytes, correct, but with no mode that the appliance may use: 1280x1024 at 75 Hz is all it takes.
edid_bytes_t unusable_display_edid();

}  // namespace sim
