#include "edid_lib/vid_resolution.h"

#include <cmath>

#include "edid_lib/standard_rates.h"

namespace edid_lib {
namespace {

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

float vid_resolution_t::nominal_fps() const { return standard_rate_of(fps, has_whole_rates(type)).rate; }

std::string_view vid_resolution_t::rate_text() const { return standard_rate_of(fps, has_whole_rates(type)).text; }

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
  return rate_text() <=> other.rate_text();
}

}  // namespace edid_lib
