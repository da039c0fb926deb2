#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "sim/remote/front_panel.h"

namespace sim {

/// A picture size in pixels.
struct picture_size_t {
  uint32_t width = 0;
  uint32_t height = 0;

  bool operator==(const picture_size_t&) const = default;
  std::string text() const { return std::to_string(width) + "x" + std::to_string(height); }
};

/// What the daemon owes a display that it can use.
struct due_mode_t {
  std::string mode;          ///< as it logs it, "3840x2160@60"
  picture_size_t timing;     ///< what it programs
  picture_size_t published;  ///< what it tells the local user interface
  picture_size_t splash;     ///< the raw output that carries the splash
};

/// What is due for a display with this EDID; nothing if it lists no mode that the appliance can use.
std::optional<due_mode_t> due_for(std::span<const uint8_t> edid);

/// The size that the user interface is told: half of it, rounded up, when either side is beyond 1920 by 1080.
picture_size_t published_size(picture_size_t size);

/// The size of the splash picture: 1920 by 1080 when either side is beyond that.
picture_size_t splash_size(picture_size_t size);

/// What the daemon owes who looks at the lamp of a model.
struct due_lamp_t {
  led_t idle;      ///< without a design
  led_t good;      ///< with a good design and a valid format
  led_t dimmed;    ///< the same, when the user has chosen "Dim"
  led_t flashing;  ///< the lit phase of id mode and of the reset key

  /// Whether a design and the brightness setting make a difference.
  bool shows_status() const { return good != idle; }
};

/// Model 106 has a lamp that shows the status too; those of the others only blink.
due_lamp_t due_lamp(int model_id);

}  // namespace sim
