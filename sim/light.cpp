#include "sim/light.h"

#include <algorithm>

namespace sim {

std::string colour_text(const look_t& look) { return look.light.brightness == 0 ? "off" : look.colour; }

std::string blink_text(const light_t& light) {
  return light.period_ms == 0 ? "steady" : std::to_string(light.period_ms);
}

std::string looks_text(const look_t& look) {
  if (look.light.brightness == 0) {
    return "off";
  }
  const std::string lit = look.colour + " at " + std::to_string(look.light.brightness);
  return lit + (look.light.period_ms == 0 ? ", steady" : ", blinks every " + blink_text(look.light) + " ms");
}

look_t mixed(const light_t& blue, const light_t& green) {
  if (blue.brightness == 0) {
    return {"green", green};
  }
  if (green.brightness == 0) {
    return {"blue", blue};
  }
  return {"cyan", {std::max(blue.brightness, green.brightness), std::max(blue.period_ms, green.period_ms)}};
}

}  // namespace sim
