#include "edid_lib/rate_alternative.h"

namespace edid_lib {

vid_resolution_t rate_alternative(const vid_resolution_t& mode) {
  const float rate = mode.nominal_fps();
  // 59.94 and its like fail this test, their whole part being no multiple of 6, so the alternative is always slower.
  if (static_cast<int>(rate) % 6 != 0) {
    return mode;
  }
  if (!mode.timing.known()) {
    vid_resolution_t slower = mode;
    slower.fps = rate * 1000.0F / 1001.0F;
    return slower;
  }
  vid_timing_t slower = mode.timing;
  slower.pixel_clock_khz = static_cast<uint32_t>(static_cast<float>(slower.pixel_clock_khz) * 1000.0F / 1001.0F);
  return vid_resolution_t(slower);
}

}  // namespace edid_lib
