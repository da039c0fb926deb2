#include "tools/vgnctl/status/status_items.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

#include "lnx/src/board_sensors.h"
#include "lnx/src/fan.h"
#include "lnx/src/ktm5030.h"
#include "lnx/src/power_source.h"
#include "lnx/src/scaled_channel.h"
#include "lnx/src/xk_status.h"

namespace vgnctl {
namespace {

using nlohmann::json;

/// To thousandths, which is more than the hardware knows. A sensor whose file tells no finite number tells nothing.
json rounded(float value) {
  // Without the sign that a zero may have.
  return std::isfinite(value) ? json(std::round(double{value} * 1000) / 1000 + 0.0) : json();
}

template <typename value_t>
json value_of(bool (*reader)(value_t& out_value)) {
  value_t value{};
  return reader(value) ? json(value) : json();
}

json value_of(bool (*reader)(float& out_value)) {
  float value = 0;
  return reader(value) ? rounded(value) : json();
}

status_item_t power_source() {
  constexpr std::array<const char*, 5> meanings{"no supply known", "auxiliary supply", "PoE below class 4",
                                                "PoE class 4", "PoE class 5 or more"};
  const json value = value_of(lnx::read_power_source);
  return {"power_source", value, value.is_null() ? "" : meanings.at(value.get<std::size_t>())};
}

struct ktm5030_mode_t {
  json mode;
  json byte;
};

ktm5030_mode_t ktm5030_mode() {
  uint32_t mode = 0;
  const uint8_t answer = lnx::ktm5030_get_mode(mode);
  if (answer == 0) {
    return {};
  }
  // The answer has 1 in place of the byte 0.
  return {mode, mode == 0 ? 0 : answer};
}

json ktm5030_info() {
  lnx::ktm5030_status_t status;
  const auto& info = status.info;
  return lnx::ktm5030_read_info(status) ? json::array({info.first, info.second, info.third}) : json();
}

}  // namespace

std::vector<status_item_t> read_status() {
  const ktm5030_mode_t ktm5030 = ktm5030_mode();
  return {
      {"board_temperature_a", value_of(lnx::read_board_temperature_a), "°C"},
      {"board_temperature_b", value_of(lnx::read_board_temperature_b), "°C"},
      {"pl_temperature", value_of(lnx::read_pl_temperature), "°C"},
      {"ps_temperature", value_of(lnx::read_ps_temperature), "°C"},
      {"vccaux14_a", value_of(lnx::read_vccaux14_a), "V"},
      {"vccaux14_b", value_of(lnx::read_vccaux14_b), "V"},
      {"vccaux15", value_of(lnx::read_vccaux15), "V"},
      {"fan_speed", value_of(lnx::read_fan_speed), "turns a minute"},
      {"fan_pwm", value_of(lnx::read_fan_pwm), "of 255"},
      {"fan_ramp_rate", value_of(lnx::read_fan_ramp_rate), "of 255"},
      power_source(),
      {"aux_status", value_of(lnx::read_aux_status), ""},
      {"poe_status", value_of(lnx::read_poe_status), ""},
      {"poe_class", value_of(lnx::read_poe_class), ""},
      {"board_id", value_of(lnx::read_board_id), ""},
      {"product_id", value_of(lnx::read_product_id), ""},
      {"ktm5030_mode", ktm5030.mode, ""},
      {"ktm5030_mode_byte", ktm5030.byte, ""},
      {"ktm5030_info", ktm5030_info(), ""},
  };
}

}  // namespace vgnctl
