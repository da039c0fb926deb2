#pragma once

namespace lnx {

// Temperatures of the processor, which the kernel's IIO layer tells in three files a channel: what is in "_raw" and in
// "_offset" added up, times what is in "_scale". They are read in the order offset, raw, scale; the first without a
// line fails the call, and the output is as it was. A line that is no number reads 0. What is infinite or no
// number by its own word ("1e39", "inf", "nan") makes such a result, which is handed out with true. Any thread.

/// In degrees Celsius, of "/sys/bus/iio/devices/iio:device0/in_temp2_pl_temp", which has thousandths: the programmable
/// logic.
bool read_pl_temperature(float& out_degrees);

/// In degrees Celsius, of "/sys/bus/iio/devices/iio:device0/in_temp0_ps_temp", which has thousandths: the processing
/// system.
bool read_ps_temperature(float& out_degrees);

}  // namespace lnx
