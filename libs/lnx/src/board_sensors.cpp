#include "lnx/src/board_sensors.h"

#include "lnx/src/status_file.h"

namespace lnx {
namespace {

constexpr const char* vccaux14_raw = "/sys/bus/iio/devices/iio:device0/in_voltage29_vccaux14_raw";
constexpr const char* vccaux15_raw = "/sys/bus/iio/devices/iio:device0/in_voltage30_vccaux15_raw";

bool read_thousandths(const char* path, float& out_value) {
  float thousandths = 0;
  if (!read_status_float(path, thousandths)) {
    return false;
  }
  out_value = thousandths / 1000.0F;
  return true;
}

bool read_steps(const char* path, float step, float& out_value) {
  float steps = 0;
  if (!read_status_float(path, steps)) {
    return false;
  }
  out_value = steps * step;
  return true;
}

}  // namespace

bool read_board_temperature_a(float& out_degrees) {
  return read_thousandths("/sys/class/hwmon/hwmon0/temp4_input", out_degrees);
}

bool read_board_temperature_b(float& out_degrees) {
  return read_thousandths("/sys/class/hwmon/hwmon0/temp1_input", out_degrees);
}

bool read_vccaux14_a(float& out_volts) { return read_steps(vccaux14_raw, 0.00035095215F, out_volts); }

bool read_vccaux14_b(float& out_volts) { return read_steps(vccaux14_raw, 0.00014437162F, out_volts); }

bool read_vccaux15(float& out_volts) { return read_steps(vccaux15_raw, 8.4431966e-05F, out_volts); }

}  // namespace lnx
