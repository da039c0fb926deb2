#pragma once

#include <cstdint>
#include <string>

namespace lnx {

// What all readers of status files have in common. They keep nothing and take no lock; any thread. An output is as it
// was when its function fails.

/// The file's first line, without its end. False if the file cannot be read or is empty; an empty line is a line.
bool read_status_text(const std::string& path, std::string& out_text);

/// The file's first line by `status_float`. False without a line.
bool read_status_float(const std::string& path, float& out_value);

/// The file's first line by `status_float` and `truncated`. False without a line.
bool read_status_integer(const std::string& path, int32_t& out_value);

/// Writes `value` in decimal digits, without a line end, in place of what is in the file. False if the file cannot be
/// opened for writing; whether the driver takes the value is not asked.
bool write_status_integer(const std::string& path, int32_t value);

/// The number at the start of the text as `strtof` reads it in the C locale, whichever the process has set: 0 if there
/// is none, infinite if it is too large.
float status_float(const std::string& text);

/// The value without its fraction; the nearest there is if it is out of range, and 0 for what is no number. That is
/// what the appliance's processor makes of them, and what C++ leaves undefined.
int32_t truncated(float value);

}  // namespace lnx
