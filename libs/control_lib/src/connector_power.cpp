#include "control_lib/src/connector_power.h"

#include <charconv>
#include <fstream>
#include <string>

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

std::optional<bool> gpio_is_one(const char* path) {
  const auto line = first_line(path);
  if (!line) {
    return std::nullopt;
  }
  int value = 0;
  std::from_chars(line->data(), line->data() + line->size(), value);
  return value == 1;
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
