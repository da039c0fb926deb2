#include "sim/demo/due.h"

#include <vector>

#include "edid_lib/edid.h"
#include "edid_lib/tarn_filter_resolution.h"

namespace sim {
namespace {

constexpr picture_size_t full_hd{1920, 1080};

bool is_beyond_full_hd(picture_size_t size) { return size.width > full_hd.width || size.height > full_hd.height; }

}  // namespace

picture_size_t published_size(picture_size_t size) {
  return is_beyond_full_hd(size) ? picture_size_t{(size.width + 1) / 2, (size.height + 1) / 2} : size;
}

picture_size_t splash_size(picture_size_t size) { return is_beyond_full_hd(size) ? full_hd : size; }

std::optional<due_mode_t> due_for(std::span<const uint8_t> bytes) {
  if (bytes.empty()) {
    return std::nullopt;
  }
  edid_lib::tarn_filter_resolution_t filter;
  filter.max_resolution = edid_lib::vid_resolution_t("3840x2160@60");
  filter.min_resolution = edid_lib::vid_resolution_t("640x480@59.94");
  edid_lib::edid_t edid(std::vector<uint8_t>(bytes.begin(), bytes.end()));
  const auto modes = filter.modes(edid);
  if (modes.empty()) {
    return std::nullopt;
  }
  const auto& first = modes.front();
  const picture_size_t named{static_cast<uint32_t>(first.width), static_cast<uint32_t>(first.height)};
  const picture_size_t timing{first.timing.h_active, first.timing.v_active};
  return due_mode_t{first.key(), timing, published_size(named), splash_size(timing)};
}

due_lamp_t due_lamp(int model_id) {
  if (model_id == 106) {
    return {{"blue", 15, 0}, {"green", 15, 0}, {"green", 5, 0}, {"green", 15, 0}};
  }
  const led_t off;
  return {off, off, off, {"white", 255, 0}};
}

}  // namespace sim
