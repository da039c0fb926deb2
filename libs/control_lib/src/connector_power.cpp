#include "control_lib/src/connector_power.h"

#include <charconv>
#include <fstream>
#include <string>
#include <string_view>
#include <system_error>

namespace control_lib {
namespace {

std::optional<std::string> first_line(const char* path) {
  std::ifstream file(path);
  std::string line;
  if (!file || !std::getline(file, line)) {
    return std::nullopt;
  }
  return line;
}

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r";
  const size_t first = text.find_first_not_of(blanks);
  return first != std::string_view::npos ? text.substr(first, text.find_last_not_of(blanks) - first + 1) : "";
}

bool is_one(std::string_view text) {
  int value = 0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  return result.ec == std::errc() && result.ptr == text.data() + text.size() && value == 1;
}

std::optional<bool> gpio_is_one(const char* path) {
  const auto line = first_line(path);
  return line ? std::optional(is_one(trimmed(*line))) : std::nullopt;
}

std::optional<bool> receiver_is_enabled() {
  const auto line = first_line("/proc/tarn/ep_snk0/rx-5v");
  return line ? std::optional(*line == "Enabled") : std::nullopt;
}

}  // namespace

std::optional<bool> connector_power(int input_index, uint32_t model_id) {
  if (model_id == 137) {
    return input_index == 0 ? receiver_is_enabled() : gpio_is_one("/sys/class/gpio/gpio325/value");
  }
  return gpio_is_one(input_index == 0 ? "/sys/class/gpio/gpio335/value" : "/sys/class/gpio/gpio334/value");
}

}  // namespace control_lib
