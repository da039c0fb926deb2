#pragma once

#include "edid_lib/vid_resolution.h"

namespace edid_lib {

/// The mode at the other rate of its pair, 1000/1001 slower: 59.94 for 60. Only whole nominal rates that are a multiple
/// of 6 have a pair; other modes are returned as they are. 72 is such a rate, but 71.93 still goes by 72, so that the
/// key stays; and 59.94 is one in a DMT mode, where it goes by 60. A mode with a timing is made anew from the slower
/// timing, so pixel aspect, reduced blanking, type, location and preference start from their defaults.
vid_resolution_t rate_alternative(const vid_resolution_t& mode);

}  // namespace edid_lib
