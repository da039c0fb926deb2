#pragma once

namespace lnx {

// Temperatures and voltages that one file tells, as a number to be scaled. Each call reads its file anew; false, and
// the output as it was, without a line in it. A line that is no number reads 0. What is
// infinite or no number by its own word ("1e39", "inf", "nan") is handed out as such, with true. Any thread.

/// In degrees Celsius, of "/sys/class/hwmon/hwmon0/temp4_input", which has thousandths.
bool read_board_temperature_a(float& out_degrees);

/// In degrees Celsius, of "/sys/class/hwmon/hwmon0/temp1_input", which has thousandths.
bool read_board_temperature_b(float& out_degrees);

// In volts, of the converter below "/sys/bus/iio/devices/iio:device0/", which has steps. Channel 29 is read with two
// scales.

/// Of "in_voltage29_vccaux14_raw", 0.00035095215 a step.
bool read_vccaux14_a(float& out_volts);

/// Of "in_voltage29_vccaux14_raw" too, 0.00014437162 a step.
bool read_vccaux14_b(float& out_volts);

/// Of "in_voltage30_vccaux15_raw", 8.4431966e-05 a step.
bool read_vccaux15(float& out_volts);

}  // namespace lnx
