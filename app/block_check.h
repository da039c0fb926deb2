#pragma once

namespace vgn_control {

/// Whether the value of the environment variable VGN_CONTROL_BLOCK, null when it is not set, switches the video
/// functions off: its first word must be "1".
bool isControlBlocked(const char* value);

}  // namespace vgn_control
