#pragma once

#include <cstdint>
#include <optional>

#include "sim/light.h"

namespace sim {

/// Judges by the writes that it sees whether somebody lets a light blink. A value: times are given, and have to rise.
///
/// - The light blinks from its second rise on, that is from dark to lit, if that comes within five seconds of the
/// first.
/// - The period is the time between the last two rises, rounded to 10 ms.
/// - It is steady again, lit or dark, when it has not changed for two periods, and for a second at least: before,
/// nobody
///   can tell a pause of a busy program from the end.
class flash_watch_t {
 public:
  /// Somebody has set the level. Whether the light is another.
  bool set(uint32_t level, int64_t now_ms);

  light_t light(int64_t now_ms) const;

  /// When blinking will count as over if nobody sets a level; nothing for a steady light.
  std::optional<int64_t> steady_at_ms(int64_t now_ms) const;

 private:
  int64_t patience_ms() const;

  uint32_t level = 0;
  uint32_t lit_level = 0;  ///< the last one that was not dark
  uint32_t period_ms = 0;  ///< 0: no two rises yet that belong together
  std::optional<int64_t> rise_ms;
  int64_t changed_ms = 0;
};

}  // namespace sim
