#include "edid_lib/tarn_filter_resolution.h"

#include <algorithm>

#include "edid_lib/visitor_modes.h"

namespace edid_lib {
namespace {

constexpr float highest_fps = 60.5F;
constexpr float lowest_fps = 23.5F;

bool passes(const std::vector<std::unique_ptr<resolution_filter>>& filters, const vid_resolution_t& mode) {
  return std::all_of(filters.begin(), filters.end(), [&](const auto& one) { return one->accept(mode); });
}

}  // namespace

void tarn_filter_resolution_t::add_direction_filters(chain_t& filters) const {
  if (direction == filter_direction_t::input) {
    filters.push_back(std::make_unique<vgnstreamer_hw_input_filter>());
  }
  if (direction != filter_direction_t::output) {
    return;
  }
  filters.push_back(std::make_unique<vgnstreamer_hw_output_filter>());
  if (!unsupported.empty()) {
    filters.push_back(std::make_unique<vgnstreamer_unsupported_resolutions_filter>(unsupported));
  }
}

/// In this order, because a refusal is told by the first filter that refuses.
tarn_filter_resolution_t::chain_t tarn_filter_resolution_t::chain() const {
  chain_t filters;
  if (!allow_interlaced) {
    filters.push_back(std::make_unique<interlaced_filter>());
  }
  if (!allow_non_square) {
    filters.push_back(std::make_unique<non_square_pixels_filter>());
  }
  add_direction_filters(filters);
  filters.push_back(std::make_unique<max_resolution_filter>(max_resolution));
  filters.push_back(std::make_unique<min_resolution_filter>(min_resolution));
  filters.push_back(std::make_unique<max_fps_filter>(highest_fps));
  filters.push_back(std::make_unique<min_fps_filter>(lowest_fps));
  return filters;
}

bool tarn_filter_resolution_t::accepts(const vid_resolution_t& mode) const { return passes(chain(), mode); }

void tarn_filter_resolution_t::filter(std::vector<vid_resolution_t>& modes) const {
  const chain_t filters = chain();
  std::erase_if(modes, [&](const vid_resolution_t& mode) { return !passes(filters, mode); });
}

std::vector<vid_resolution_t> tarn_filter_resolution_t::modes(edid_t& edid) const {
  visitor_modes_t visitor;
  visitor.read(&edid);
  std::vector<vid_resolution_t> usable = visitor.take_modes();
  filter(usable);
  return usable;
}

}  // namespace edid_lib
