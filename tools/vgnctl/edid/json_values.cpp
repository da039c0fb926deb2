#include "tools/vgnctl/edid/json_values.h"

#include <array>
#include <charconv>
#include <cmath>

namespace vgnctl {
namespace {

/// The double that is printed with the digits of the float: 59.94 instead of 59.939998626708984.
double shortest_double(float value) {
  std::array<char, 64> text{};
  const auto written = std::to_chars(text.data(), text.data() + text.size(), value);
  double number = 0;
  std::from_chars(text.data(), written.ptr, number);
  return number;
}

}  // namespace

json_t json_of(float value) {
  if (std::isnan(value)) {
    return "nan";
  }
  if (std::isinf(value)) {
    return value > 0 ? "inf" : "-inf";
  }
  return shortest_double(value);
}

json_t json_of(const edid_lib::vid_timing_t& timing) {
  return {timing.pixel_clock_khz, timing.h_active,     timing.h_sync_start, timing.h_sync_end, timing.h_total,
          timing.v_active,        timing.v_sync_start, timing.v_sync_end,   timing.v_total,    timing.flags};
}

json_t json_of(const edid_lib::vid_resolution_t& mode) {
  return {{"key", mode.key()},
          {"text", mode.to_string()},
          {"list_text", mode.list_text()},
          {"width", mode.width},
          {"height", mode.height},
          {"fps", json_of(mode.fps)},
          {"nominal_fps", json_of(mode.nominal_fps())},
          {"pixel_aspect_x", json_of(mode.pixel_aspect_x)},
          {"pixel_aspect_y", json_of(mode.pixel_aspect_y)},
          {"reduced_blanking", mode.reduced_blanking},
          {"interlaced", mode.interlaced},
          {"preferred", mode.preferred},
          {"h_image_mm", mode.h_image_mm},
          {"v_image_mm", mode.v_image_mm},
          {"h_border", mode.h_border},
          {"v_border", mode.v_border},
          {"type", static_cast<uint32_t>(mode.type)},
          {"location", static_cast<uint32_t>(mode.location)},
          {"timing", json_of(mode.timing)}};
}

json_t json_of(const std::vector<edid_lib::vid_resolution_t>& modes) {
  json_t list = json_t::array();
  for (const auto& mode : modes) {
    list.push_back(json_of(mode));
  }
  return list;
}

json_t keys_of(const std::vector<edid_lib::vid_resolution_t>& modes) {
  json_t list = json_t::array();
  for (const auto& mode : modes) {
    list.push_back(mode.key());
  }
  return list;
}

std::string utf8_of_bytes(std::string_view bytes) {
  std::string text;
  for (const char character : bytes) {
    const auto byte = static_cast<uint8_t>(character);
    if (byte < 0x80) {
      text += character;
    } else {
      text += static_cast<char>(0xC0U | byte >> 6U);
      text += static_cast<char>(0x80U | (byte & 0x3FU));
    }
  }
  return text;
}

std::string line_of(const json_t& value) { return value.dump(-1, ' ', true, json_t::error_handler_t::replace); }

}  // namespace vgnctl
