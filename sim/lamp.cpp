#include "sim/lamp.h"

#include <algorithm>
#include <cctype>

namespace sim {
namespace {

const std::string blue_folder = "/sys/class/leds/xk1-rgb-led:blue:status/";
const std::string green_folder = "/sys/class/leds/xk1-rgb-led:green:id/";
const std::string pwm_folder = "/proc/tarn/pwm-0/";
const std::string plain_file = "/sys/class/leds/id_led/brightness";

/// "NUMBER NUMBER", with or without a newline.
bool is_two_numbers(std::string_view text) {
  const std::size_t gap = text.find(' ');
  return gap != std::string_view::npos && parse_brightness(text.substr(0, gap)) &&
         parse_brightness(text.substr(gap + 1));
}

std::optional<int64_t> earlier(const std::optional<int64_t>& a, const std::optional<int64_t>& b) {
  return a && b ? std::min(a, b) : a ? a : b;
}

}  // namespace

std::vector<std::string> rgb_lamp_t::files() const {
  std::vector<std::string> paths;
  for (const auto& folder : {blue_folder, green_folder}) {
    for (const char* attribute : {"trigger", "pattern", "repeat", "brightness"}) {
      paths.push_back(folder + attribute);
    }
  }
  return paths;
}

written_e rgb_lamp_t::write(const std::string& file, std::string_view text, int64_t now_ms) {
  led_class_t& led = file.starts_with(blue_folder) ? blue : green;
  return led.write(std::string_view(file).substr(file.rfind('/') + 1), text, now_ms);
}

look_t rgb_lamp_t::look(int64_t now_ms) const { return mixed(blue.light(now_ms), green.light(now_ms)); }

std::optional<int64_t> rgb_lamp_t::changes_at_ms(int64_t now_ms) const {
  return earlier(blue.changes_at_ms(now_ms), green.changes_at_ms(now_ms));
}

std::vector<std::string> pwm_lamp_t::files() const {
  return {pwm_folder + "out_en", pwm_folder + "period", pwm_folder + "value"};
}

written_e pwm_lamp_t::write(const std::string& file, std::string_view text, int64_t now_ms) {
  if (!apply(file, text)) {
    return written_e::refused;
  }
  return watch.set(has_period && has_value ? level : 0, now_ms) ? written_e::changed : written_e::same;
}

bool pwm_lamp_t::apply(const std::string& file, std::string_view text) {
  if (file == pwm_folder + "out_en") {
    const auto wanted = parse_brightness(text);
    level = wanted.value_or(level);
    return wanted.has_value();
  }
  if (!is_two_numbers(text)) {
    return false;
  }
  (file == pwm_folder + "period" ? has_period : has_value) = true;
  return true;
}

look_t pwm_lamp_t::look(int64_t now_ms) const { return {"white", watch.light(now_ms)}; }

std::optional<int64_t> pwm_lamp_t::changes_at_ms(int64_t now_ms) const { return watch.steady_at_ms(now_ms); }

std::vector<std::string> plain_lamp_t::files() const { return {plain_file}; }

written_e plain_lamp_t::write(const std::string& /*file*/, std::string_view text, int64_t now_ms) {
  const auto level = parse_brightness(text);
  if (!level) {
    return written_e::refused;
  }
  return watch.set(*level, now_ms) ? written_e::changed : written_e::same;
}

look_t plain_lamp_t::look(int64_t now_ms) const { return {"white", watch.light(now_ms)}; }

std::optional<int64_t> plain_lamp_t::changes_at_ms(int64_t now_ms) const { return watch.steady_at_ms(now_ms); }

std::unique_ptr<lamp_t> make_lamp(int model_id) {
  switch (model_id) {
    case 105:
      return std::make_unique<pwm_lamp_t>();
    case 106:
      return std::make_unique<rgb_lamp_t>();
    default:
      return std::make_unique<plain_lamp_t>();
  }
}

}  // namespace sim
