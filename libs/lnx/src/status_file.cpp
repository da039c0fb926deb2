#include "lnx/src/status_file.h"

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <utility>

namespace lnx {
namespace {

/// Files have a decimal point, whatever locale the program has set.
locale_t point_locale() {
  static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
  return locale;
}

}  // namespace

bool read_status_text(const std::string& path, std::string& out_text) {
  std::ifstream file(path);
  std::string line;
  if (!file.is_open() || !std::getline(file, line)) {
    return false;
  }
  out_text = std::move(line);
  return true;
}

bool read_status_float(const std::string& path, float& out_value) {
  std::string text;
  if (!read_status_text(path, text)) {
    return false;
  }
  out_value = status_float(text);
  return true;
}

bool read_status_integer(const std::string& path, int32_t& out_value) {
  float value = 0;
  if (!read_status_float(path, value)) {
    return false;
  }
  out_value = truncated(value);
  return true;
}

bool write_status_integer(const std::string& path, int32_t value) {
  std::ofstream file(path);
  file << std::to_string(value);
  return file.is_open();
}

float status_float(const std::string& text) { return strtof_l(text.c_str(), nullptr, point_locale()); }

int32_t truncated(float value) {
  using limits_t = std::numeric_limits<int32_t>;
  constexpr float above = 2147483648.0F;
  if (std::isnan(value)) {
    return 0;
  }
  if (value >= above) {
    return limits_t::max();
  }
  return value < -above ? limits_t::min() : static_cast<int32_t>(value);
}

}  // namespace lnx
