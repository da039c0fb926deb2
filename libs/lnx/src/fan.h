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

/// In turns a minute. A number out of range is the nearest `int32_t`.
bool read_fan_speed(int32_t& out_speed);

/// How quickly the PWM value follows, 255 at most: 256 and more is a failure. A negative value is handed out as it is.
bool read_fan_ramp_rate(int32_t& out_ramp_rate);

// The writers put the value in decimal digits in place of what the file holds. They do not look at its range: that is
// left to the driver, and whether it takes the value is not asked. False if the file cannot be opened for writing. Any
// thread; of writes to the same file at the same time the last one holds.

/// To "pwm1_enable": who drives the fan, as the driver numbers it.
bool write_fan_enable(int32_t value);

/// To "pwm1": how much of the time the fan has power, of 255.
bool write_fan_pwm(int32_t value);

/// To "custom/pwm1_ramp_rate": how quickly the PWM value follows, 255 at most.
bool write_fan_ramp_rate(int32_t value);

}  // namespace lnx
