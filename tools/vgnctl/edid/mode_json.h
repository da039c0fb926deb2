#pragma once

#include <string>

#include "tools/vgnctl/edid/json_values.h"

namespace edid_lib {
class timing_table_t;
}  // namespace edid_lib

namespace vgnctl {

// The JSON values of the commands that take texts, as docs/edid-json.md describes them.

/// All that there is to know of the mode that `text` stands for.
json_t mode_report(const std::string& text);

/// How the modes of two texts relate.
json_t comparison(const std::string& a, const std::string& b);

/// The colour format that `text` stands for.
json_t color_report(const std::string& text);

/// A timing table by its name: "established", "dmt", "cta" or "hdmi".
json_t table_report(const std::string& name);

/// The table itself. Throws std::invalid_argument for another name.
const edid_lib::timing_table_t& table_named(const std::string& name);

}  // namespace vgnctl
