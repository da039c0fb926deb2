#include "tools/vgnctl/edid/mode_text.h"

#include <algorithm>
#include <iomanip>
#include <sstream>
#include <stdexcept>

#include "edid_lib/timing_lookup.h"
#include "edid_lib/timing_tables.h"
#include "edid_lib/timing_words.h"
#include "tools/vgnctl/edid/mode_json.h"

namespace vgnctl {
namespace {

using edid_lib::vid_resolution_t;
using edid_lib::vid_timing_t;

constexpr const char* no_modes = "no modes\n";

template <typename T>
std::string text_of_number(const T& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

std::string column(std::string_view text, std::size_t width) {
  std::string padded(text);
  padded.resize(std::max(width, text.size()), ' ');
  return padded + "  ";
}

std::string timing_text(const vid_timing_t& timing) {
  std::ostringstream out;
  out << timing.pixel_clock_khz << " kHz, " << timing.h_active << ' ' << timing.h_sync_start << ' ' << timing.h_sync_end
      << ' ' << timing.h_total << ", " << timing.v_active << ' ' << timing.v_sync_start << ' ' << timing.v_sync_end
      << ' ' << timing.v_total << ", flags 0x" << std::hex << timing.flags;
  return out.str();
}

/// A look-up's answer; `number_label` stands in front of the number of the row.
std::string lookup_text(bool found, std::string_view number_label, uint32_t number, const vid_timing_t& timing) {
  if (!found) {
    return "no";
  }
  return std::string(number_label) + ' ' + std::to_string(number) + ": " + timing_text(timing);
}

std::string resolved_text(const vid_resolution_t& mode) {
  const auto resolved = resolve_timing(mode);
  const std::string type(text_of(resolved.type));
  return resolved.timing.known() ? type + ": " + timing_text(resolved.timing) : "none";
}

std::string pixels_text(const vid_resolution_t& mode) {
  return text_of_number(mode.pixel_aspect_x) + ":" + text_of_number(mode.pixel_aspect_y);
}

std::string colors_text(const vid_resolution_t& mode) {
  using edid_lib::color_encoding_t;
  return std::string(color_word(default_colorimetry(mode))) + ", RGB " +
         std::string(color_word(default_range(mode, color_encoding_t::rgb))) + ", YCC " +
         std::string(color_word(default_range(mode, color_encoding_t::ycc)));
}

std::string verdict_text(std::string_view refusing_filter) {
  return refusing_filter.empty() ? "accepted" : "refused by " + std::string(refusing_filter);
}

/// `width`: of the widest text in the first column.
std::string list_line(const vid_resolution_t& mode, std::size_t width, std::string_view rest) {
  return column(mode.list_text(), width) + column(mode.key(), 20) + std::string(rest) + '\n';
}

std::string origin_text(const vid_resolution_t& mode) {
  return std::string(text_of(mode.type)) + ", " + std::string(text_of(mode.location));
}

std::size_t widest(const std::vector<vid_resolution_t>& modes) {
  std::size_t width = 0;
  for (const vid_resolution_t& mode : modes) {
    width = std::max(width, mode.list_text().size());
  }
  return width;
}

}  // namespace

parsed_mode_t parse_mode(const std::string& text) {
  try {
    return {vid_resolution_t(text), {}};
  } catch (const std::invalid_argument&) {
    return {std::nullopt, "invalid_argument"};
  } catch (const std::out_of_range&) {
    return {std::nullopt, "out_of_range"};
  }
}

std::optional<edid_lib::color_format_t> parse_color(const std::string& text) {
  // No word stands for these values, so they are there afterwards only if nothing was read.
  constexpr uint32_t unread = 0xFFFFFFFF;
  const edid_lib::color_format_t untouched{edid_lib::color_standard_t{unread}, edid_lib::color_encoding_t{unread},
                                           edid_lib::chroma_sampling_t{unread}, edid_lib::color_range_t{unread},
                                           edid_lib::color_depth_t{unread}};
  edid_lib::color_format_t format = untouched;
  std::istringstream(text) >> format;
  return format == untouched ? std::nullopt : std::optional(format);
}

std::string color_text(const edid_lib::color_format_t& format) { return text_of_number(format); }

std::string field_line(std::string_view label, std::string_view value) {
  constexpr std::size_t label_width = 18;
  return "  " + column(label, label_width) + std::string(value) + '\n';
}

std::string mode_lines(const vid_resolution_t& mode) {
  const std::string aspect = mode.aspect_ratio() + ", pixels " + pixels_text(mode);
  return mode.list_text() + '\n' + field_line("Key", mode.key()) +
         field_line("Rate", text_of_number(mode.fps) + ", nominal " + text_of_number(mode.nominal_fps())) +
         field_line("Picture aspect", aspect) +
         field_line("CTA", lookup_text(is_cta(mode), "VIC", cta_vic(mode), cta_timing(mode))) +
         field_line("HDMI", lookup_text(is_hdmi(mode), "HDMI VIC", hdmi_vic(mode), hdmi_timing(mode))) +
         field_line("DMT", is_dmt(mode) ? timing_text(dmt_timing(mode)) : "no") +
         field_line("Established",
                    lookup_text(is_established(mode), "bit", established_index(mode), established_timing(mode))) +
         field_line("Timing used", resolved_text(mode)) + field_line("Default colours", colors_text(mode)) +
         field_line("As an output mode", verdict_text(edid_lib::output_connection_filter().refused_by(mode)));
}

std::string list_lines(const std::vector<vid_resolution_t>& modes) {
  std::string lines;
  const std::size_t width = widest(modes);
  for (const vid_resolution_t& mode : modes) {
    lines += list_line(mode, width, origin_text(mode));
  }
  return lines.empty() ? no_modes : lines;
}

std::string usable_lines(const std::vector<vid_resolution_t>& modes, const edid_lib::tarn_filter_resolution_t& filter) {
  std::string usable;
  std::string refused;
  const std::size_t width = widest(modes);
  for (const vid_resolution_t& mode : modes) {
    const std::string_view refusal = filter.refused_by(mode);
    (refusal.empty() ? usable : refused) +=
        list_line(mode, width, refusal.empty() ? origin_text(mode) : verdict_text(refusal));
  }
  return (usable.empty() ? no_modes : usable) + (refused.empty() ? "" : '\n' + refused);
}

std::string comparison_line(const vid_resolution_t& a, const vid_resolution_t& b) {
  const std::string_view relation = a == b ? " equals " : a < b ? " is less than " : " is greater than ";
  return a.key() + std::string(relation) + b.key() + '\n';
}

std::string table_lines(const std::string& name) {
  std::string lines;
  for (const auto* row : table_named(name).by_key()) {
    lines += column(row->key, 20) + column(name == "dmt" ? "" : std::to_string(row->number), 3) +
             timing_text(row->timing) + '\n';
  }
  return lines;
}

}  // namespace vgnctl
