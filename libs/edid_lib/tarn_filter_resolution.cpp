#include "edid_lib/tarn_filter_resolution.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <utility>

#include "edid_lib/default_modes.h"
#include "edid_lib/timing_lookup.h"
#include "edid_lib/visitor_modes.h"
#include "edid_lib/visitor_renderer.h"

namespace edid_lib {
namespace {

constexpr float highest_fps = 60.5F;
constexpr float lowest_fps = 23.5F;

constexpr std::string_view reason_texts[] = {
    "No Format Detected",         "Interlaced Video Format",    "Unsupported Pixel Size",
    "Below Min Supported Format", "Above Max Supported Format", "Below Min Supported FPS",
    "Above Max Supported FPS",    "Not Supported on Hardware",  "Unsupported Color Encoding",
};

using chain_t = std::vector<std::unique_ptr<resolution_filter>>;

/// The name of the first that refuses; empty if none does.
std::string_view first_refusal(const chain_t& filters, const vid_resolution_t& mode) {
  const auto refusing =
      std::find_if(filters.begin(), filters.end(), [&](const auto& one) { return !one->accept(mode); });
  return refusing != filters.end() ? (*refusing)->name() : std::string_view();
}

std::vector<vid_resolution_t> modes_of(edid_t& edid) {
  visitor_modes_t visitor;
  visitor.read(&edid);
  return visitor.take_modes();
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
  constexpr std::size_t most_filters = 8;
  chain_t filters;
  filters.reserve(most_filters);
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

std::string_view tarn_filter_resolution_t::refused_by(const vid_resolution_t& mode) const {
  return first_refusal(chain(), mode);
}

void tarn_filter_resolution_t::filter(std::vector<vid_resolution_t>& modes) const {
  const chain_t filters = chain();
  std::erase_if(modes, [&](const vid_resolution_t& mode) { return !first_refusal(filters, mode).empty(); });
}

std::vector<vid_resolution_t> tarn_filter_resolution_t::modes(edid_t& edid) const {
  std::vector<vid_resolution_t> usable = modes_of(edid);
  filter(usable);
  return usable;
}

edid_t tarn_filter_resolution_t::filtered_edid(const edid_t& edid) const {
  edid_t filtered(edid);
  std::vector<vid_resolution_t> usable = modes(filtered);
  if (usable.empty()) {
    usable.emplace_back(established_timing(vid_resolution_t(resolution_of_every_display)));
  }
  visitor_modes_t writer(std::move(usable));
  writer.write(&filtered);
  return filtered;
}

std::string tarn_filter_resolution_t::report(edid_t& edid) const {
  visitor_renderer_t renderer;
  renderer.read(&edid);
  std::string text = renderer.text() + "Modes\n";
  const chain_t filters = chain();
  for (const vid_resolution_t& mode : modes_of(edid)) {
    const std::string_view refusal = first_refusal(filters, mode);
    text += "  " + mode.list_text() + ": ";
    text += refusal.empty() ? "accepted" : "refused by " + std::string(refusal);
    text += '\n';
  }
  return text;
}

std::string_view tarn_filter_resolution_t::reason_text(refusal_reason_t reason) {
  const auto index = static_cast<uint32_t>(reason);
  return index < std::size(reason_texts) ? reason_texts[index] : std::string_view();
}

tarn_filter_resolution_t output_connection_filter() {
  tarn_filter_resolution_t filter;
  filter.max_resolution = vid_resolution_t(max_output_resolution);
  filter.min_resolution = vid_resolution_t(min_output_resolution);
  return filter;
}

}  // namespace edid_lib
