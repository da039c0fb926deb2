#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "sim/led_pattern.h"
#include "sim/light.h"

namespace sim {

/// What a write to an attribute of a lamp came to.
enum class written_e {
  refused,  ///< a driver fails such a write
  same,     ///< taken, and the light is what it was
  changed,  ///< taken, and the light is another
  /// A driver fails such a write, and the light is another: a pattern that is refused ends the one that played.
  refused_but_changed
};

/// An LED of the kernel's class "leds", of brightness 0 to 255, with the triggers "none" and "pattern". A value: times
/// are given, and have to rise.
///
///   trigger     "none" or "pattern"; each write of one ends the other and its pattern, and what was on goes off
///   repeat      how often the pattern plays, -1 for ever, which it is at first; starts the pattern anew
///   pattern     starts to play as often as the one before it still had to, so not at all after one that has ended; a
///               newline clears it, and the light stays at the level that it happens to have
///   brightness  a level; 0 ends the trigger. A pattern that plays goes on with its next level
///
/// "repeat" and "pattern" are refused without the trigger "pattern".
class led_class_t {
 public:
  /// `attribute` is the name of the file.
  written_e write(std::string_view attribute, std::string_view text, int64_t now_ms);

  light_t light(int64_t now_ms) const;

  /// When the light will become another one without a write; nothing if it stays.
  std::optional<int64_t> changes_at_ms(int64_t now_ms) const;

 private:
  bool apply(std::string_view attribute, std::string_view text, int64_t now_ms);
  bool set_trigger(std::string_view name);
  bool set_repeat(std::string_view text, int64_t now_ms);
  bool set_pattern(std::string_view text, int64_t now_ms);
  bool set_brightness(std::string_view text, int64_t now_ms);
  void remove_trigger();
  void start(int64_t now_ms);
  void stop(int64_t now_ms);
  bool plays(int64_t now_ms) const;

  bool has_pattern_trigger = false;
  pattern_t pattern;
  /// When the pattern began; nothing if it was stopped, or none was ever started.
  std::optional<int64_t> started_ms;
  std::optional<int64_t> ends_ms;
  /// The level while no pattern was started.
  uint32_t brightness = 0;
};

/// The level in a text for an attribute "brightness", with or without a newline: nothing for what is no number.
std::optional<uint32_t> parse_brightness(std::string_view text);

}  // namespace sim
