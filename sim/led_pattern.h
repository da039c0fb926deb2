#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

#include "sim/light.h"

namespace sim {

// The kernel's LED trigger "pattern", as in Documentation/ABI/testing/sysfs-class-led-trigger-pattern and
// drivers/leds/trigger/ledtrig-pattern.c: rules on values.

/// One tuple of a pattern: the brightness that is reached, and the time until the next tuple's.
struct pattern_step_t {
  uint32_t brightness = 0;
  uint32_t duration_ms = 0;

  bool operator==(const pattern_step_t&) const = default;
};

/// What is played: the tuples from the first to the last, `repeat` times, -1 being for ever.
struct pattern_t {
  std::vector<pattern_step_t> steps;
  int32_t repeat = -1;
};

/// The tuples of a text "BRIGHTNESS MILLISECONDS ...", as the kernel reads it: none for a text of less than two
/// characters, such as the newline that clears a pattern; nothing for a text that it refuses, because a tuple is not
/// two numbers, a brightness is above 255, or there is one tuple only.
std::optional<std::vector<pattern_step_t>> parse_pattern(std::string_view text);

/// The count of a text for the attribute "repeat"; nothing for a text that the kernel refuses: anything but a number
/// above 0, and -1.
std::optional<int32_t> parse_repeat(std::string_view text);

/// Plays a pattern of two tuples or more. Tuples of equal brightness are one level, and a tuple of no duration behind
/// such a one is skipped; towards another brightness the light goes in steps of 50 ms.
class pattern_player_t {
 public:
  /// A brightness that is set, and how long it stays: at least 1 ms, since a timer takes its time.
  struct level_t {
    uint32_t brightness = 0;
    int64_t duration_ms = 0;
  };

  /// `pattern` must outlive the player.
  explicit pattern_player_t(const pattern_t& played) : pattern(played), repeats_left(played.repeat) {}

  /// The next level; nothing when all repeats are over, and then the last level stays.
  std::optional<level_t> next();

  /// Where it stands: what follows depends on this alone, as long as the pattern repeats for ever.
  std::pair<std::size_t, int64_t> position() const { return {current, elapsed_ms}; }

  /// How often the pattern is still to be begun or gone on with; -1 for ever.
  int32_t repeats() const { return repeats_left; }

 private:
  const pattern_step_t& step() const { return pattern.steps[current]; }
  const pattern_step_t& following() const { return pattern.steps[(current + 1) % pattern.steps.size()]; }
  void advance();
  level_t hold();
  level_t dim();

  const pattern_t& pattern;
  std::size_t current = 0;
  int64_t elapsed_ms = 0;  ///< within a step that changes the brightness gradually
  int32_t repeats_left;
};

/// Where a pattern has come to.
struct played_t {
  uint32_t brightness = 0;
  int32_t repeats_left = 0;  ///< as in `pattern_player_t::repeats`; the last level of a round counts for the next one
};

/// What there is at a time after the start.
played_t played_until(const pattern_t& pattern, int64_t after_ms);

/// The brightness of `played_until`.
uint32_t brightness_at(const pattern_t& pattern, int64_t after_ms);

/// What the pattern looks like while it plays. One that has no end in sight counts as steady.
light_t light_of(const pattern_t& pattern);

/// When the pattern has been played as often as it says; nothing for one that repeats for ever, or nearly so.
std::optional<int64_t> end_of(const pattern_t& pattern);

}  // namespace sim
