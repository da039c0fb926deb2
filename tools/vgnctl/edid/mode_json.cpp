#include "tools/vgnctl/edid/mode_json.h"

#include <stdexcept>

#include "edid_lib/color_format.h"
#include "edid_lib/tarn_filter_resolution.h"
#include "edid_lib/timing_lookup.h"
#include "edid_lib/timing_tables.h"
#include "tools/vgnctl/edid/mode_text.h"

namespace vgnctl {
namespace {

using edid_lib::vid_resolution_t;

template <typename Enum>
uint32_t number_of(Enum value) {
  return static_cast<uint32_t>(value);
}

json_t number_or_null(uint32_t number) {
  return number == edid_lib::no_timing_number ? json_t(nullptr) : json_t(number);
}

json_t timing_or_null(bool found, const edid_lib::vid_timing_t& timing) {
  return found ? json_of(timing) : json_t(nullptr);
}

void add_lookups(json_t& report, const vid_resolution_t& mode) {
  report["cta_vic"] = number_or_null(cta_vic(mode));
  report["cta_timing"] = timing_or_null(is_cta(mode), cta_timing(mode));
  report["hdmi_vic"] = number_or_null(hdmi_vic(mode));
  report["hdmi_timing"] = timing_or_null(is_hdmi(mode), hdmi_timing(mode));
  report["dmt_timing"] = timing_or_null(is_dmt(mode), dmt_timing(mode));
  report["established_index"] = number_or_null(established_index(mode));
  report["established_timing"] = timing_or_null(is_established(mode), established_timing(mode));
  report["classify"] = number_of(classify(mode));
  const auto resolved = resolve_timing(mode);
  report["resolved_timing"] = json_of(resolved.timing);
  report["resolved_type"] = number_of(resolved.type);
}

void add_colors(json_t& report, const vid_resolution_t& mode) {
  report["default_colorimetry"] = number_of(default_colorimetry(mode));
  report["default_range_rgb"] = number_of(default_range(mode, edid_lib::color_encoding_t::rgb));
  report["default_range_ycc"] = number_of(default_range(mode, edid_lib::color_encoding_t::ycc));
}

json_t refusal_or_null(const vid_resolution_t& mode) {
  const auto filter = edid_lib::output_connection_filter().refused_by(mode);
  return filter.empty() ? json_t(nullptr) : json_t(filter);
}

}  // namespace

json_t mode_report(const std::string& text) {
  json_t report{{"input", text}};
  const parsed_mode_t parsed = parse_mode(text);
  if (!parsed.mode) {
    report["error"] = parsed.error;
    return report;
  }
  const vid_resolution_t& mode = *parsed.mode;
  report["mode"] = json_of(mode);
  report["aspect_ratio"] = mode.aspect_ratio();
  report["picture_aspect"] = json_of(mode.picture_aspect());
  report["is_4_3"] = mode.is_4_3();
  report["is_16_9"] = mode.is_16_9();
  add_lookups(report, mode);
  add_colors(report, mode);
  report["refused_by"] = refusal_or_null(mode);
  return report;
}

json_t comparison(const std::string& a, const std::string& b) {
  json_t report{{"a", a}, {"b", b}};
  const parsed_mode_t left = parse_mode(a);
  const parsed_mode_t right = parse_mode(b);
  if (!left.mode || !right.mode) {
    report["error"] = left.mode ? right.error : left.error;
    return report;
  }
  report["equal"] = *left.mode == *right.mode;
  report["less"] = *left.mode < *right.mode;
  report["greater"] = *left.mode > *right.mode;
  return report;
}

json_t color_report(const std::string& text) {
  const auto format = parse_color(text);
  json_t fields;
  if (format) {
    fields = {number_of(format->colorimetry), number_of(format->encoding), number_of(format->chroma),
              number_of(format->range), number_of(format->depth)};
  }
  return {{"input", text}, {"fields", fields}, {"text", color_text(format.value_or(edid_lib::color_format_t()))}};
}

json_t table_report(const std::string& name) {
  json_t rows = json_t::array();
  for (const auto* row : table_named(name).by_key()) {
    const json_t number = name == "dmt" ? json_t(nullptr) : json_t(row->number);
    rows.push_back({{"key", row->key}, {"number", number}, {"timing", json_of(row->timing)}});
  }
  return {{"table", name}, {"rows", rows}};
}

const edid_lib::timing_table_t& table_named(const std::string& name) {
  if (name == "established") {
    return edid_lib::established_timings();
  }
  if (name == "dmt") {
    return edid_lib::dmt_timings();
  }
  if (name == "cta") {
    return edid_lib::cta_timings();
  }
  if (name == "hdmi") {
    return edid_lib::hdmi_timings();
  }
  throw std::invalid_argument("there is no timing table \"" + name + '"');
}

}  // namespace vgnctl
