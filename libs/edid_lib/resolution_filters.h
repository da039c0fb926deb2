#pragma once

#include <utility>
#include <vector>

#include "edid_lib/filter.h"
#include "edid_lib/vid_resolution.h"

namespace edid_lib {

using resolution_filter = filter<vid_resolution_t>;

/// Refuses interlaced modes.
class interlaced_filter final : public resolution_filter {
 public:
  bool accept(const vid_resolution_t& mode) const override { return !mode.interlaced; }
  std::string_view name() const override { return "Interlaced Filter"; }
};

/// Refuses modes whose pixels are not square.
class non_square_pixels_filter final : public resolution_filter {
 public:
  bool accept(const vid_resolution_t& mode) const override { return mode.pixel_aspect_x == mode.pixel_aspect_y; }
  std::string_view name() const override { return "Non Square Pixel Filter"; }
};

/// Refuses modes greater than the limit. Rates compare as text, as modes do: 3840x2160 at 75 is too much for a limit of
/// 3840x2160@60, at 120 it is not.
class max_resolution_filter final : public resolution_filter {
 public:
  explicit max_resolution_filter(vid_resolution_t greatest) : limit(std::move(greatest)) {}
  bool accept(const vid_resolution_t& mode) const override { return mode <= limit; }
  std::string_view name() const override { return "Max Resolution Filter"; }

 private:
  vid_resolution_t limit;
};

/// Refuses modes less than the limit.
class min_resolution_filter final : public resolution_filter {
 public:
  explicit min_resolution_filter(vid_resolution_t least) : limit(std::move(least)) {}
  bool accept(const vid_resolution_t& mode) const override { return mode >= limit; }
  std::string_view name() const override { return "Min Resolution Filter"; }

 private:
  vid_resolution_t limit;
};

/// Refuses nominal rates above the limit, with a tolerance of 0.05.
class max_fps_filter final : public resolution_filter {
 public:
  explicit max_fps_filter(float highest) : limit(highest) {}
  bool accept(const vid_resolution_t& mode) const override;
  std::string_view name() const override { return "Max FPS Filter"; }

 private:
  float limit;
};

/// Refuses nominal rates below the limit, with a tolerance of 0.05.
class min_fps_filter final : public resolution_filter {
 public:
  explicit min_fps_filter(float lowest) : limit(lowest) {}
  bool accept(const vid_resolution_t& mode) const override;
  std::string_view name() const override { return "Min FPS Filter"; }

 private:
  float limit;
};

/// Refuses the modes of a list.
class vgnstreamer_unsupported_resolutions_filter final : public resolution_filter {
 public:
  explicit vgnstreamer_unsupported_resolutions_filter(std::vector<vid_resolution_t> refused)
      : unsupported(std::move(refused)) {}
  bool accept(const vid_resolution_t& mode) const override;
  std::string_view name() const override { return "Tarn Video Endpoint Unsupported Resolutions Filter"; }

 private:
  std::vector<vid_resolution_t> unsupported;
};

/// Refuses what the output hardware cannot produce: pixel clocks outside 25 to 600 MHz, lines with an odd position,
/// line rates outside 15 to 140 kHz. A mode without a timing is refused.
class vgnstreamer_hw_output_filter final : public resolution_filter {
 public:
  bool accept(const vid_resolution_t& mode) const override;
  std::string_view name() const override { return "Tarn Video Endpoint HW Output Filter"; }
};

/// Refuses what the input hardware cannot take: 720x480 at any rate.
class vgnstreamer_hw_input_filter final : public resolution_filter {
 public:
  bool accept(const vid_resolution_t& mode) const override { return mode.width != 720 || mode.height != 480; }
  std::string_view name() const override { return "Tarn Video Endpoint HW Input Filter"; }
};

}  // namespace edid_lib
