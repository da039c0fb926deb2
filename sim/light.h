#pragma once

#include <cstdint>
#include <string>

namespace sim {

/// How a light looks to somebody who watches it for a while.
struct light_t {
  uint32_t brightness = 0;  ///< 0, dark, to 255; of the brightest phase if it blinks
  uint32_t period_ms = 0;   ///< of blinking, on and off together; 0: steady

  bool operator==(const light_t&) const = default;
};

/// A light and its colour: "blue", "green", "white", or "cyan", which is blue and green at once.
struct look_t {
  std::string colour;
  light_t light;

  bool operator==(const look_t&) const = default;
};

/// The colour that is seen: "off" of a light that is dark.
std::string colour_text(const look_t& look);

/// "steady", or the period of blinking in milliseconds.
std::string blink_text(const light_t& light);

/// All in one, as in "off", "blue at 15, steady", "green at 15, blinks every 1000 ms".
std::string looks_text(const look_t& look);

/// What a lamp of two colours looks like. The one that blinks sets the period.
look_t mixed(const light_t& blue, const light_t& green);

}  // namespace sim
