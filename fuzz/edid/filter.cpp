#include <iterator>
#include <string>

#include "edid_lib/cta_hdmi_vsdb.h"
#include "edid_lib/cta_video_data_block.h"
#include "edid_lib/timing_lookup.h"
#include "edid_lib/visitor_renderer.h"
#include "fuzz/edid/support.h"

namespace fuzz::edid {
namespace {

using edid_lib::edid_t;
using edid_lib::filter_direction_t;
using edid_lib::tarn_filter_resolution_t;
using edid_lib::timing_location_t;
using edid_lib::timing_type_t;

tarn_filter_resolution_t take_filter(input_t& input) {
  tarn_filter_resolution_t filter = edid_lib::output_connection_filter();
  filter.direction = static_cast<filter_direction_t>(input.take_byte() % 3);
  filter.allow_interlaced = take_flag(input);
  filter.allow_non_square = take_flag(input);
  if (take_flag(input)) {
    filter.max_resolution = take_mode(input);
    filter.min_resolution = take_mode(input);
  }
  if (take_flag(input)) {
    filter.unsupported = {take_mode(input), vid_resolution_t("1280x720@50")};
  }
  return filter;
}

/// Whether the output hardware produces a mode, with its edges as they are published.
bool is_output_mode(const vid_resolution_t& mode) {
  const auto& timing = mode.timing;
  const uint32_t clock = timing.pixel_clock_khz;
  const uint32_t positions = timing.h_active | timing.h_sync_start | timing.h_sync_end | timing.h_total;
  if (clock < 25'000 || clock > 600'000 || timing.h_total == 0 || positions % 2 != 0) {
    return false;
  }
  const float line_rate = static_cast<float>(clock * 1000) / static_cast<float>(timing.h_total);
  return line_rate >= 15'000.0F && line_rate <= 140'000.0F;
}

std::string_view refusal_by_direction(const tarn_filter_resolution_t& filter, const vid_resolution_t& mode) {
  if (filter.direction == filter_direction_t::input && mode.width == 720 && mode.height == 480) {
    return "Tarn Video Endpoint HW Input Filter";
  }
  if (filter.direction != filter_direction_t::output) {
    return {};
  }
  if (!is_output_mode(mode)) {
    return "Tarn Video Endpoint HW Output Filter";
  }
  const bool listed = std::count(filter.unsupported.begin(), filter.unsupported.end(), mode) != 0;
  return listed ? "Tarn Video Endpoint Unsupported Resolutions Filter" : std::string_view();
}

std::string_view refusal_by_limits(const tarn_filter_resolution_t& filter, const vid_resolution_t& mode) {
  if (mode > filter.max_resolution) {
    return "Max Resolution Filter";
  }
  if (mode < filter.min_resolution) {
    return "Min Resolution Filter";
  }
  const float rate = mode.nominal_fps();
  return rate > 60 ? "Max FPS Filter" : rate < 23.9F ? "Min FPS Filter" : std::string_view();
}

/// Who refuses a mode, by the rules in their order.
std::string_view refusal(const tarn_filter_resolution_t& filter, const vid_resolution_t& mode) {
  if (!filter.allow_interlaced && mode.interlaced) {
    return "Interlaced Filter";
  }
  if (!filter.allow_non_square && mode.pixel_aspect_x != mode.pixel_aspect_y) {
    return "Non Square Pixel Filter";
  }
  const std::string_view by_direction = refusal_by_direction(filter, mode);
  return by_direction.empty() ? refusal_by_limits(filter, mode) : by_direction;
}

modes_t accepted(const tarn_filter_resolution_t& filter, const modes_t& modes) {
  modes_t list;
  std::copy_if(modes.begin(), modes.end(), std::back_inserter(list),
               [&](const vid_resolution_t& mode) { return refusal(filter, mode).empty(); });
  return list;
}

void check_list(const tarn_filter_resolution_t& filter, edid_t& edid, const modes_t& modes, const modes_t& usable) {
  require(are_same(filter.modes(edid), usable), "the usable modes are those that no rule refuses, in their order");
  for (const vid_resolution_t& mode : modes) {
    const std::string_view refused = filter.refused_by(mode);
    require(refused == refusal(filter, mode), "the first rule that refuses is told");
    require(filter.accepts(mode) == refused.empty(), "what is refused is not accepted");
  }
}

modes_t found_at(const modes_t& modes, timing_location_t location) {
  modes_t list;
  std::copy_if(modes.begin(), modes.end(), std::back_inserter(list),
               [=](const vid_resolution_t& mode) { return mode.location == location; });
  return list;
}

/// Whether a mode is in a list, wherever the display would rather have it.
bool is_among(const modes_t& list, const vid_resolution_t& mode) {
  return std::any_of(list.begin(), list.end(), [&](const vid_resolution_t& one) {
    return one.timing == mode.timing && one.key() == mode.key() && one.location == mode.location;
  });
}

void check_detailed_modes(edid_t& filtered, const modes_t& usable) {
  modes_t written = filtered.base()->detailed().modes();
  std::size_t room = filtered.base()->detailed().capacity();
  if (filtered.cta() != nullptr && filtered.cta()->detailed_timings() != nullptr) {
    filtered.cta()->detailed_timings()->append_modes(written);
    room += filtered.cta()->detailed_timings()->capacity();
  }
  const modes_t wanted = found_at(usable, timing_location_t::detailed_timing_descriptor);
  if (!std::all_of(wanted.begin(), wanted.end(), fits_entry)) {
    return;
  }
  require(written.size() == std::min(wanted.size(), room), "as many detailed timings are written as there is room for");
  require(std::equal(written.begin(), written.end(), wanted.begin(),
                     [](const auto& a, const auto& b) { return a.timing == b.timing; }),
          "in their order");
}

void check_standard_modes(const edid_t& filtered, const modes_t& usable) {
  const auto& block = filtered.base()->standard();
  for (const vid_resolution_t& mode : block.modes(filtered.base()->revision(), true)) {
    require(is_among(usable, mode), "standard timings that are written are usable");
  }
  for (const vid_resolution_t& mode : found_at(usable, timing_location_t::standard_block)) {
    require(mode.width == 1366 || block.contains(mode), "usable standard timings are written if a code has them");
  }
}

void check_established_modes(const edid_t& filtered, const modes_t& usable) {
  const auto& block = filtered.base()->established();
  require(block.valid(), "the required mode is always there");
  for (const vid_resolution_t& mode : block.modes()) {
    require(mode == edid_lib::est_timings_block_t::required_mode() || is_among(usable, mode), "others are usable");
  }
  for (const vid_resolution_t& mode : found_at(usable, timing_location_t::established_block)) {
    require(block.contains(mode), "usable established timings are written");
  }
}

void check_video_modes(const edid_t& filtered, const modes_t& usable) {
  std::size_t entries = 0;
  for (const auto* block : blocks_of<edid_lib::cta_video_data_block_t>(*filtered.cta())) {
    entries += block->size() - 1;
    for (const vid_resolution_t& mode : block->modes()) {
      require(mode.type != timing_type_t::cta || is_among(usable, mode), "video codes that are written are usable");
    }
  }
  const modes_t wanted = found_at(usable, timing_location_t::cta_video_data_block);
  const auto coded = std::count_if(wanted.begin(), wanted.end(), edid_lib::is_cta);
  require(entries == static_cast<std::size_t>(coded), "each mode with a code is written");
  for (const auto* block : blocks_of<edid_lib::cta_hdmi_vsdb_t>(*filtered.cta())) {
    for (const vid_resolution_t& mode : block->modes()) {
      require(is_among(usable, mode), "HDMI VICs that are written are usable");
    }
  }
}

void check_modes_of_filtered(edid_t& filtered, const modes_t& usable) {
  check_detailed_modes(filtered, usable);
  check_standard_modes(filtered, usable);
  check_established_modes(filtered, usable);
  if (filtered.cta() != nullptr) {
    check_video_modes(filtered, usable);
  }
}

/// With nothing usable there is the mode of every display, wherever it has a form.
void check_last_resort(edid_t& filtered) {
  const modes_t modes = modes_of(filtered);
  require(!modes.empty(), "a filtered EDID has a mode");
  for (const vid_resolution_t& mode : modes) {
    require(mode.width == 640 && mode.height == 480, "it is the mode of every display");
  }
}

/// Blocks of one kind share or repeat what they were written, so only a single one keeps its list for good. A mode that
/// stands in for others may be refused itself.
bool stays_as_it_is(const edid_t& edid, const modes_t& usable, const modes_t& usable_then) {
  const bool one_each =
      edid.cta() == nullptr || (blocks_of<edid_lib::cta_video_data_block_t>(*edid.cta()).size() <= 1 &&
                                blocks_of<edid_lib::cta_hdmi_vsdb_t>(*edid.cta()).size() <= 1);
  const modes_t detailed = found_at(usable, timing_location_t::detailed_timing_descriptor);
  return one_each && !usable.empty() && !usable_then.empty() &&
         std::all_of(detailed.begin(), detailed.end(), fits_entry);
}

void check_filtered(const tarn_filter_resolution_t& filter, edid_t& edid, const modes_t& usable) {
  const auto before = edid.assemble();
  edid_t filtered = filter.filtered_edid(edid);
  require(edid.assemble() == before, "the EDID that is filtered stays as it is");
  require(filtered.valid() == (edid.cta() == nullptr || edid.cta()->valid()), "only an extension leaves it invalid");
  if (usable.empty()) {
    check_last_resort(filtered);
  } else {
    check_modes_of_filtered(filtered, usable);
  }
  if (edid.cta() != nullptr) {
    const int added = filtered.base()->detailed().count() != 0 ? 1 : 0;
    require(filtered.cta()->native_count() == (edid.cta()->native_count() | added), "a native timing is told");
  }
  check_written(filtered);
  if (stays_as_it_is(edid, usable, filter.modes(filtered))) {
    require(filter.filtered_edid(filtered).assemble() == filtered.assemble(), "what is filtered has nothing to filter");
  }
}

std::size_t count_of(std::string_view text, std::string_view word) {
  std::size_t count = 0;
  for (std::size_t at = text.find(word); at != std::string_view::npos; at = text.find(word, at + 1)) {
    ++count;
  }
  return count;
}

void check_report(const tarn_filter_resolution_t& filter, edid_t& edid, const modes_t& modes, std::size_t usable) {
  const auto before = edid.assemble();
  const std::string report = filter.report(edid);
  require(edid.assemble() == before, "an EDID that is reported stays as it is");
  require(std::all_of(report.begin(), report.end(), [](char c) { return c == '\n' || (c >= ' ' && c <= '~'); }),
          "a report is lines of text");
  require(report.starts_with("EDID Base Block\n"), "and starts at the top");
  const std::string verdicts = report.substr(report.rfind("\nModes\n") + 1);
  require(count_of(verdicts, "\n") == modes.size() + 1, "it tells what becomes of every mode");
  require(count_of(verdicts, ": accepted\n") == usable, "those that are usable are accepted");
  require(count_of(verdicts, ": refused by ") == modes.size() - usable, "all others are refused by somebody");
  edid_lib::visitor_renderer_t renderer;
  renderer.read(&edid);
  const std::string text = renderer.text();
  renderer.write(&edid);
  require(renderer.text() == text && report.starts_with(text), "a report starts anew each time");
}

}  // namespace

void check_filter(edid_t& edid, const modes_t& modes, input_t& input) {
  const tarn_filter_resolution_t filter = take_filter(input);
  const modes_t usable = accepted(filter, modes);
  check_list(filter, edid, modes, usable);
  check_filtered(filter, edid, usable);
  check_report(filter, edid, modes, usable.size());
}

}  // namespace fuzz::edid
