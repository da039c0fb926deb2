#include "sim/led_class.h"

#include <algorithm>
#include <charconv>
#include <utility>
#include <vector>

namespace sim {
namespace {

std::string_view without_newline(std::string_view text) {
  return text.ends_with('\n') ? text.substr(0, text.size() - 1) : text;
}

}  // namespace

std::optional<uint32_t> parse_brightness(std::string_view text) {
  constexpr uint64_t brightest = 255;
  const std::string_view digits = without_newline(text);
  uint64_t level = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), level);
  if (error != std::errc() || end != digits.data() + digits.size()) {
    return std::nullopt;
  }
  return static_cast<uint32_t>(std::min(level, brightest));
}

written_e led_class_t::write(std::string_view attribute, std::string_view text, int64_t now_ms) {
  const light_t before = light(now_ms);
  const bool taken = apply(attribute, text, now_ms);
  if (light(now_ms) != before) {
    return taken ? written_e::changed : written_e::refused_but_changed;
  }
  return taken ? written_e::same : written_e::refused;
}

bool led_class_t::apply(std::string_view attribute, std::string_view text, int64_t now_ms) {
  if (attribute == "trigger") {
    return set_trigger(without_newline(text));
  }
  if (attribute == "brightness") {
    return set_brightness(text, now_ms);
  }
  if (!has_pattern_trigger) {
    return false;
  }
  return attribute == "repeat" ? set_repeat(text, now_ms) : attribute == "pattern" && set_pattern(text, now_ms);
}

void led_class_t::start(int64_t now_ms) {
  if (!pattern.steps.empty() && pattern.repeat != 0) {
    started_ms = now_ms;
    ends_ms = end_of(pattern);
  }
}

// The light stays as it is at that moment, and so does the count of what was still to be played.
void led_class_t::stop(int64_t now_ms) {
  if (started_ms) {
    const played_t played = played_until(pattern, now_ms - *started_ms);
    brightness = played.brightness;
    pattern.repeat = played.repeats_left;
  }
  started_ms.reset();
}

bool led_class_t::plays(int64_t now_ms) const { return started_ms && (!ends_ms || now_ms < *started_ms + *ends_ms); }

void led_class_t::remove_trigger() {
  if (has_pattern_trigger) {
    pattern = {};
    started_ms.reset();
    brightness = 0;
  }
  has_pattern_trigger = false;
}

bool led_class_t::set_trigger(std::string_view name) {
  if (name != "none" && name != "pattern") {
    return false;
  }
  remove_trigger();
  has_pattern_trigger = name == "pattern";
  return true;
}

bool led_class_t::set_repeat(std::string_view text, int64_t now_ms) {
  const auto repeat = parse_repeat(text);
  if (!repeat) {
    return false;
  }
  pattern.repeat = *repeat;
  start(now_ms);
  return true;
}

// The old pattern is gone also when the new one is refused.
bool led_class_t::set_pattern(std::string_view text, int64_t now_ms) {
  stop(now_ms);
  auto steps = parse_pattern(text);
  const bool taken = steps.has_value();
  pattern.steps = std::move(steps).value_or(std::vector<pattern_step_t>{});
  start(now_ms);
  return taken;
}

bool led_class_t::set_brightness(std::string_view text, int64_t now_ms) {
  const auto level = parse_brightness(text);
  if (!level) {
    return false;
  }
  if (*level == 0) {
    remove_trigger();
  }
  if (!plays(now_ms)) {
    stop(now_ms);
    brightness = *level;
  }
  return true;
}

light_t led_class_t::light(int64_t now_ms) const {
  if (plays(now_ms)) {
    return light_of(pattern);
  }
  return {started_ms ? brightness_at(pattern, now_ms - *started_ms) : brightness, 0};
}

std::optional<int64_t> led_class_t::changes_at_ms(int64_t now_ms) const {
  return plays(now_ms) && ends_ms ? std::optional(*started_ms + *ends_ms) : std::nullopt;
}

}  // namespace sim
