#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "edid_lib/vid_resolution.h"

namespace vgnctl {

/// Keeps the members in the order that they are written in.
using json_t = nlohmann::ordered_json;

/// A number whose digits are the fewest that read back as `value`; "nan", "inf" or "-inf" for what JSON has no number
/// for.
json_t json_of(float value);

/// The ten numbers in their order.
json_t json_of(const edid_lib::vid_timing_t& timing);

json_t json_of(const edid_lib::vid_resolution_t& mode);
json_t json_of(const std::vector<edid_lib::vid_resolution_t>& modes);

/// The keys of modes.
json_t keys_of(const std::vector<edid_lib::vid_resolution_t>& modes);

/// Bytes that a display calls text, as UTF-8: a character for each byte, U+0000 to U+00FF.
std::string utf8_of_bytes(std::string_view bytes);

/// The value on a line of its own, without its line feed. All of it is printable ASCII: what a display calls text can
/// steer no terminal. Texts that are no UTF-8 have U+FFFD where they are not.
std::string line_of(const json_t& value);

}  // namespace vgnctl
