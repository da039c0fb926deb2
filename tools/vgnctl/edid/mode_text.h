#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "edid_lib/color_format.h"
#include "edid_lib/tarn_filter_resolution.h"
#include "edid_lib/vid_resolution.h"

namespace vgnctl {

/// A mode, or what its parser has thrown: "invalid_argument" or "out_of_range".
struct parsed_mode_t {
  std::optional<edid_lib::vid_resolution_t> mode;
  std::string_view error;
};

parsed_mode_t parse_mode(const std::string& text);

/// Nothing for a text that the reader of colour formats leaves alone.
std::optional<edid_lib::color_format_t> parse_color(const std::string& text);

std::string color_text(const edid_lib::color_format_t& format);

// What the commands print for people: whole lines.

/// Label and value in two columns, indented.
std::string field_line(std::string_view label, std::string_view value);

/// All that there is to know of a mode.
std::string mode_lines(const edid_lib::vid_resolution_t& mode);

/// The list of an EDID: each mode with its key, and where it comes from.
std::string list_lines(const std::vector<edid_lib::vid_resolution_t>& modes);

/// What `filter` leaves of that list, and by which filters the rest is refused.
std::string usable_lines(const std::vector<edid_lib::vid_resolution_t>& modes,
                         const edid_lib::tarn_filter_resolution_t& filter);

/// "A is greater than B".
std::string comparison_line(const edid_lib::vid_resolution_t& a, const edid_lib::vid_resolution_t& b);

/// The rows of the table of that name, in the order of their keys.
std::string table_lines(const std::string& name);

}  // namespace vgnctl
