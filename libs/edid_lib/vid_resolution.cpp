#include "edid_lib/vid_resolution.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>

#include "edid_lib/rate_text.h"

namespace edid_lib {
namespace {

/// Not every rate of the timing tables is here: 65 and 100 are not, so those modes go by another name.
constexpr float standard_rates[] = {23.98F, 24, 25, 29.97F, 30, 43,      50,  56,  59.94F,  60, 67,
                                    70,     72, 75, 85,     88, 119.88F, 120, 200, 239.76F, 240};
constexpr float lowest_rate = standard_rates[0];
constexpr float highest_rate = standard_rates[std::size(standard_rates) - 1];
constexpr float no_rate = -1;

float snap_to_standard(float rate) {
  for (std::size_t i = 1; i < std::size(standard_rates); ++i) {
    const float below = standard_rates[i - 1];
    const float above = standard_rates[i];
    if (rate <= above) {
      return (above - below) * 0.5F >= above - rate ? above : below;
    }
  }
  return no_rate;
}

bool has_whole_rates(timing_type_t type) { return type == timing_type_t::established || type == timing_type_t::dmt; }

bool is_near(float aspect, float wanted) { return std::fabs(aspect - wanted) < 0.001F; }

}  // namespace

vid_resolution_t::vid_resolution_t(int32_t mode_width, int32_t mode_height, timing_type_t timing_type,
                                   timing_location_t found_at, float rate)
    : width(mode_width), height(mode_height), fps(rate), type(timing_type), location(found_at) {}

vid_resolution_t::vid_resolution_t(const vid_timing_t& raw_timing)
    : width(static_cast<int32_t>(raw_timing.h_active)),
      height(static_cast<int32_t>(raw_timing.v_active)),
      interlaced((raw_timing.flags & interlaced_scan) != 0),
      timing(raw_timing) {
  if (timing.h_total != 0 && timing.v_total != 0) {
    const uint32_t pixel_clock_hz = timing.pixel_clock_khz * 1000;
    fps = static_cast<float>(pixel_clock_hz) / static_cast<float>(timing.h_total) / static_cast<float>(timing.v_total);
  }
}

float vid_resolution_t::nominal_fps() const {
  const bool whole = has_whole_rates(type);
  if (fps <= lowest_rate) {
    return whole ? 24 : lowest_rate;
  }
  if (fps >= highest_rate) {
    return highest_rate;
  }
  const float rate = snap_to_standard(fps);
  return whole ? std::round(rate) : rate;
}

float vid_resolution_t::picture_aspect() const {
  if (height == 0 || pixel_aspect_y == 0) {
    return 0;
  }
  return static_cast<float>(width) / static_cast<float>(height) * (pixel_aspect_x / pixel_aspect_y);
}

bool vid_resolution_t::is_4_3() const { return height != 0 && is_near(picture_aspect(), 1.3333334F); }

bool vid_resolution_t::is_16_9() const { return height != 0 && is_near(picture_aspect(), 1.7777778F); }

bool vid_resolution_t::operator==(const vid_resolution_t& other) const {
  // Nominal rates are few and each has a text of its own, so that equal rates and equal texts are the same.
  return width == other.width && height == other.height && nominal_fps() == other.nominal_fps();
}

std::weak_ordering vid_resolution_t::operator<=>(const vid_resolution_t& other) const {
  if (width != other.width) {
    return width <=> other.width;
  }
  if (height != other.height) {
    return height <=> other.height;
  }
  return rate_text_t(nominal_fps()).view() <=> rate_text_t(other.nominal_fps()).view();
}

}  // namespace edid_lib
