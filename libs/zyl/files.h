#pragma once

#include <cstddef>
#include <string>

namespace zyl {

/// Whether there is something at the path: a file, a folder, a device, behind a symbolic link too. False as well for
/// what must not be looked at.
bool exists(const std::string& path);

/// Reads a file of less than `max_size` bytes into `result`. False, with `result` as it was, if the file cannot be
/// opened, is no plain stream of bytes (a folder, a pipe), has `max_size` bytes or more, or fails while it is read. A
/// named pipe that nobody writes to is waited for before it is refused.
bool read_file(const std::string& path, std::string& result, std::size_t max_size);

/// The whole content of a file, of any size. From a named pipe it reads until its last writer closes it, and waits for
/// the first.
///
/// Throws `exception_t` with "Couldn't open the specified file: <path> because <reason>", where the reason names the
/// state of the stream: "std::ios::failbit" if the file does not open, "std::ios::badbit" if it does not read.
std::string read_whole_file(const std::string& path);

}  // namespace zyl
