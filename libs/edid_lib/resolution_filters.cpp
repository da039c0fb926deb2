#include "edid_lib/resolution_filters.h"

#include <algorithm>
#include <cmath>

namespace edid_lib {
namespace {

bool nearly_same(float a, float b) { return std::fabs(a - b) < 0.05F; }

bool has_even_positions(const vid_timing_t& timing) {
  return ((timing.h_active | timing.h_sync_start | timing.h_sync_end | timing.h_total) & 1) == 0;
}

}  // namespace

bool max_fps_filter::accept(const vid_resolution_t& mode) const {
  const float rate = mode.nominal_fps();
  return limit > rate || nearly_same(limit, rate);
}

bool min_fps_filter::accept(const vid_resolution_t& mode) const {
  const float rate = mode.nominal_fps();
  return limit < rate || nearly_same(limit, rate);
}

bool vgnstreamer_unsupported_resolutions_filter::accept(const vid_resolution_t& mode) const {
  return std::find(unsupported.begin(), unsupported.end(), mode) == unsupported.end();
}

bool vgnstreamer_hw_output_filter::accept(const vid_resolution_t& mode) const {
  const vid_timing_t& timing = mode.timing;
  const uint32_t pixel_clock_hz = timing.pixel_clock_khz * 1000;
  if (pixel_clock_hz < 25'000'000 || pixel_clock_hz > 600'000'000) {
    return false;
  }
  if (timing.h_total == 0 || !has_even_positions(timing)) {
    return false;
  }
  const float line_rate_hz =
      static_cast<float>(static_cast<int32_t>(pixel_clock_hz)) / static_cast<float>(timing.h_total);
  return line_rate_hz >= 15'000.0F && line_rate_hz <= 140'000.0F;
}

}  // namespace edid_lib
