#pragma once

#include <cstdint>

namespace lnx {

// The fan, by the files "pwm1_enable", "pwm1", "fan1_input" and "custom/pwm1_ramp_rate" below
// "/sys/class/hwmon/hwmon0/".
//
// A reader gives false, and leaves its output as it was, without a line in the file. A line that is no number reads 0;
// a fraction is cut off. Any thread.

/// Reads the file and gives true, whatever is in it and also if there is none: the value is handed out to nobody.
bool read_fan_enable();

/// How much of the time the fan has power, of 255; 256 and more is a failure. A negative value is handed out as it is.
bool read_fan_pwm(int32_t& out_pwm);

/// In turns a minute.
bool read_fan_speed(int32_t& out_speed);

/// How quickly the PWM value follows, 255 at most: 256 and more is a failure. A negative value is handed out as it is.
bool read_fan_ramp_rate(int32_t& out_ramp_rate);

// These give false if the file cannot be opened; whether the driver takes the value is not asked.

bool write_fan_enable(int32_t value);
bool write_fan_pwm(int32_t value);
bool write_fan_ramp_rate(int32_t value);

}  // namespace lnx
