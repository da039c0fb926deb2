#include "sim/led_pattern.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <map>
#include <utility>

namespace sim {
namespace {

// Both as in the kernel.
constexpr int64_t dimming_interval_ms = 50;
constexpr std::size_t most_steps = 1024;

/// Nobody watches a light for longer than this.
constexpr int most_levels = 100'000;

constexpr std::string_view blanks = " \t\n\v\f\r";

std::string_view without_leading_blanks(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
  return text;
}

/// Takes a number from the front of the text.
std::optional<uint32_t> take_number(std::string_view& text) {
  text = without_leading_blanks(text);
  uint32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc()) {
    return std::nullopt;
  }
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return number;
}

}  // namespace

std::optional<std::vector<pattern_step_t>> parse_pattern(std::string_view text) {
  constexpr uint32_t brightest = 255;
  std::vector<pattern_step_t> steps;
  // A single character at the end is not looked at, whatever it is: usually it is the newline of an echo.
  while (text.size() > 1 && steps.size() < most_steps) {
    const auto brightness = take_number(text);
    const auto duration = take_number(text);
    if (!brightness || !duration || *brightness > brightest) {
      return std::nullopt;
    }
    steps.push_back({*brightness, *duration});
    text = without_leading_blanks(text);
  }
  return steps.size() == 1 ? std::nullopt : std::optional(std::move(steps));
}

std::optional<int32_t> parse_repeat(std::string_view text) {
  if (text.ends_with('\n')) {
    text.remove_suffix(1);
  }
  int32_t repeat = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), repeat);
  const bool taken = error == std::errc() && end == text.data() + text.size() && repeat >= -1 && repeat != 0;
  return taken ? std::optional(repeat) : std::nullopt;
}

std::optional<pattern_player_t::level_t> pattern_player_t::next() {
  for (;;) {
    if (repeats_left == 0) {
      return std::nullopt;
    }
    if (step().brightness == following().brightness) {
      return hold();
    }
    if (elapsed_ms <= step().duration_ms) {
      return dim();
    }
    advance();
  }
}

void pattern_player_t::advance() {
  current = (current + 1) % pattern.steps.size();
  elapsed_ms = 0;
  if (current == 0 && repeats_left > 0) {
    --repeats_left;
  }
}

pattern_player_t::level_t pattern_player_t::hold() {
  const level_t level{step().brightness, std::max<int64_t>(step().duration_ms, 1)};
  if (following().duration_ms == 0) {
    advance();
  }
  advance();
  return level;
}

pattern_player_t::level_t pattern_player_t::dim() {
  const auto from = static_cast<int64_t>(step().brightness);
  const auto to = static_cast<int64_t>(following().brightness);
  const bool is_short = elapsed_ms == 0 || step().duration_ms < dimming_interval_ms;
  const int64_t brightness = is_short ? from : from + elapsed_ms * (to - from) / step().duration_ms;
  elapsed_ms += dimming_interval_ms;
  return {static_cast<uint32_t>(brightness), dimming_interval_ms};
}

uint32_t brightness_at(const pattern_t& pattern, int64_t after_ms) {
  return played_until(pattern, after_ms).brightness;
}

played_t played_until(const pattern_t& pattern, int64_t after_ms) {
  pattern_player_t player(pattern);
  uint32_t brightness = 0;
  for (int64_t time_ms = 0; time_ms <= after_ms;) {
    const auto level = player.next();
    if (!level) {
      break;
    }
    brightness = level->brightness;
    time_ms += level->duration_ms;
  }
  return {brightness, player.repeats()};
}

light_t light_of(const pattern_t& pattern) {
  const pattern_t endless{pattern.steps, -1};
  pattern_player_t player(endless);
  std::vector<pattern_player_t::level_t> levels;
  std::map<std::pair<std::size_t, int64_t>, std::size_t> level_at;  // by position of the player
  while (levels.size() < most_levels && level_at.try_emplace(player.position(), levels.size()).second) {
    levels.push_back(*player.next());
  }
  const auto seen = level_at.find(player.position());
  // What comes before the position that is met again is never seen again.
  levels.erase(levels.begin(), levels.begin() + static_cast<std::ptrdiff_t>(seen != level_at.end() ? seen->second : 0));
  const auto [darkest, brightest] = std::minmax_element(
      levels.begin(), levels.end(), [](const auto& a, const auto& b) { return a.brightness < b.brightness; });
  int64_t period_ms = 0;
  for (const auto& level : levels) {
    period_ms += level.duration_ms;
  }
  const bool is_steady = levels.size() >= most_levels || darkest->brightness == brightest->brightness;
  return {brightest->brightness, is_steady ? 0 : static_cast<uint32_t>(period_ms)};
}

std::optional<int64_t> end_of(const pattern_t& pattern) {
  pattern_player_t player(pattern);
  int64_t time_ms = 0;
  for (int levels = 0; levels < most_levels; ++levels) {
    const auto level = player.next();
    if (!level) {
      return time_ms;
    }
    time_ms += level->duration_ms;
  }
  return std::nullopt;
}

}  // namespace sim
