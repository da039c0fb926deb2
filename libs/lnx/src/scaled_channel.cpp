#include "lnx/src/scaled_channel.h"

#include <string>

#include "lnx/src/status_file.h"

namespace lnx {
namespace {

bool read_scaled_channel(const std::string& base_path, float& out_value) {
  float offset = 0;
  float raw = 0;
  float scale = 0;
  if (!read_status_float(base_path + "_offset", offset) || !read_status_float(base_path + "_raw", raw) ||
      !read_status_float(base_path + "_scale", scale)) {
    return false;
  }
  out_value = (raw + offset) * scale;
  return true;
}

bool read_temperature(const std::string& base_path, float& out_degrees) {
  float thousandths = 0;
  if (!read_scaled_channel(base_path, thousandths)) {
    return false;
  }
  out_degrees = thousandths / 1000.0F;
  return true;
}

}  // namespace

bool read_pl_temperature(float& out_degrees) {
  return read_temperature("/sys/bus/iio/devices/iio:device0/in_temp2_pl_temp", out_degrees);
}

bool read_ps_temperature(float& out_degrees) {
  return read_temperature("/sys/bus/iio/devices/iio:device0/in_temp0_ps_temp", out_degrees);
}

}  // namespace lnx
