#include "edid_lib/timing_lookup.h"

#include "edid_lib/timing_tables.h"

namespace edid_lib {
namespace {

/// `row`, unless the mode's own timing contradicts it.
const timing_row_t* unless_contradicted(const timing_row_t* row, const vid_resolution_t& mode) {
  return !mode.timing.known() || mode.timing == row->timing ? row : nullptr;
}

const timing_row_t* cta_row(const vid_resolution_t& mode) {
  if (const timing_row_t* row = cta_timings().find(mode)) {
    return unless_contradicted(row, mode);
  }
  const vid_resolution_t alternative = rate_alternative(mode);
  const timing_row_t* row = cta_timings().find(alternative);
  return row != nullptr ? unless_contradicted(row, alternative) : nullptr;
}

const timing_row_t* dmt_row(const vid_resolution_t& mode) {
  if (const timing_row_t* row = dmt_timings().find(mode)) {
    return unless_contradicted(row, mode);
  }
  vid_resolution_t reduced = mode;
  reduced.reduced_blanking = true;
  const timing_row_t* row = dmt_timings().find(reduced);
  return row != nullptr ? unless_contradicted(row, mode) : nullptr;
}

const timing_row_t* hdmi_row(const vid_resolution_t& mode) { return hdmi_timings().find(mode); }

const timing_row_t* established_row(const vid_resolution_t& mode) { return established_timings().find(mode); }

vid_timing_t timing_of(const timing_row_t* row) { return row != nullptr ? row->timing : vid_timing_t{}; }

uint32_t number_of(const timing_row_t* row) { return row != nullptr ? row->number : no_timing_number; }

std::vector<vid_resolution_t> all_named(const timing_table_t& table, timing_type_t type) {
  std::vector<vid_resolution_t> modes;
  for (const timing_row_t* row : table.by_key()) {
    modes.push_back(*table.named_mode(row->number));
    modes.back().type = type;
  }
  return modes;
}

struct classified_row_t {
  const timing_row_t* row;
  timing_type_t type;
};

classified_row_t first_row(const vid_resolution_t& mode) {
  if (const timing_row_t* row = cta_row(mode)) {
    return {row, timing_type_t::cta};
  }
  if (const timing_row_t* row = hdmi_row(mode)) {
    return {row, timing_type_t::hdmi};
  }
  if (const timing_row_t* row = dmt_row(mode)) {
    return {row, timing_type_t::dmt};
  }
  if (const timing_row_t* row = established_row(mode)) {
    return {row, timing_type_t::established};
  }
  return {nullptr, timing_type_t::undefined};
}

}  // namespace

bool is_cta(const vid_resolution_t& mode) { return cta_row(mode) != nullptr; }
vid_timing_t cta_timing(const vid_resolution_t& mode) { return timing_of(cta_row(mode)); }
uint32_t cta_vic(const vid_resolution_t& mode) { return number_of(cta_row(mode)); }

bool is_hdmi(const vid_resolution_t& mode) { return hdmi_row(mode) != nullptr; }
vid_timing_t hdmi_timing(const vid_resolution_t& mode) { return timing_of(hdmi_row(mode)); }
uint32_t hdmi_vic(const vid_resolution_t& mode) { return number_of(hdmi_row(mode)); }

bool is_dmt(const vid_resolution_t& mode) { return dmt_row(mode) != nullptr; }
vid_timing_t dmt_timing(const vid_resolution_t& mode) { return timing_of(dmt_row(mode)); }

vid_timing_t dmt_timing_for(const vid_resolution_t& mode, timing_type_t type) {
  return type == timing_type_t::dmt ? dmt_timing(mode) : vid_timing_t{};
}

bool is_established(const vid_resolution_t& mode) { return established_row(mode) != nullptr; }
vid_timing_t established_timing(const vid_resolution_t& mode) { return timing_of(established_row(mode)); }
uint32_t established_index(const vid_resolution_t& mode) { return number_of(established_row(mode)); }

timing_type_t classify(const vid_resolution_t& mode) { return first_row(mode).type; }

resolved_timing_t resolve_timing(const vid_resolution_t& mode) {
  if (mode.timing.known()) {
    return {mode.timing, mode.type};
  }
  const classified_row_t found = first_row(mode);
  return {timing_of(found.row), found.type};
}

std::optional<vid_resolution_t> cta_resolution(uint32_t vic) {
  const vid_resolution_t* named = cta_timings().named_mode(vic);
  if (named == nullptr) {
    return std::nullopt;
  }
  vid_resolution_t mode = *named;
  mode.type = timing_type_t::cta;
  return mode;
}

vid_resolution_t hdmi_resolution(int32_t vic) {
  const timing_row_t* row = hdmi_timings().find_number(static_cast<uint32_t>(vic));
  if (row == nullptr) {
    return {};
  }
  vid_resolution_t mode(row->timing);
  mode.type = timing_type_t::hdmi;
  mode.location = timing_location_t::cta_hdmi_vsdb;
  return mode;
}

std::vector<vid_resolution_t> all_established() { return all_named(established_timings(), timing_type_t::established); }

std::vector<vid_resolution_t> all_dmt() {
  std::vector<vid_resolution_t> modes = all_named(dmt_timings(), timing_type_t::dmt);
  for (vid_resolution_t& mode : modes) {
    mode.pixel_aspect_x = 1;  // the parser takes "RB" for an aspect too; all DMT modes have square pixels
  }
  return modes;
}

std::vector<vid_resolution_t> all_cta() { return all_named(cta_timings(), timing_type_t::cta); }

std::vector<vid_resolution_t> all_hdmi() {
  std::vector<vid_resolution_t> modes;
  for (const timing_row_t* row : hdmi_timings().by_key()) {
    modes.push_back(hdmi_resolution(static_cast<int32_t>(row->number)));
  }
  return modes;
}

}  // namespace edid_lib
