#include "lnx/src/fan.h"

#include <string>

#include "lnx/src/status_file.h"

namespace lnx {
namespace {

constexpr const char* enable_file = "/sys/class/hwmon/hwmon0/pwm1_enable";
constexpr const char* pwm_file = "/sys/class/hwmon/hwmon0/pwm1";
constexpr const char* speed_file = "/sys/class/hwmon/hwmon0/fan1_input";
constexpr const char* ramp_rate_file = "/sys/class/hwmon/hwmon0/custom/pwm1_ramp_rate";

/// A value that the fan's controller keeps in eight bits.
bool read_eight_bits(const char* path, int32_t& out_value) {
  int32_t value = 0;
  if (!read_status_integer(path, value) || value >= 256) {
    return false;
  }
  out_value = value;
  return true;
}

}  // namespace

bool read_fan_enable() {
  int32_t unused = 0;
  static_cast<void>(read_status_integer(enable_file, unused));
  return true;
}

bool read_fan_pwm(int32_t& out_pwm) { return read_eight_bits(pwm_file, out_pwm); }

bool read_fan_speed(int32_t& out_speed) { return read_status_integer(speed_file, out_speed); }

bool read_fan_ramp_rate(int32_t& out_ramp_rate) { return read_eight_bits(ramp_rate_file, out_ramp_rate); }

bool write_fan_enable(int32_t value) { return write_status_integer(enable_file, value); }

bool write_fan_pwm(int32_t value) { return write_status_integer(pwm_file, value); }

bool write_fan_ramp_rate(int32_t value) { return write_status_integer(ramp_rate_file, value); }

}  // namespace lnx
