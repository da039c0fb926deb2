#pragma once

#include <string>

#include "edid_lib/edid.h"

namespace vgnctl {

/// What a display says of itself, for people: lines with the facts that tell one display from another, and which its
/// troubles come from.
std::string display_lines(edid_lib::edid_t& edid);

}  // namespace vgnctl
