#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace vgnctl {

/// The EDID in what a file holds, raw bytes or hex text. It is text if it has at least 256 hex digits and otherwise
/// nothing but white space; or if a line of it has "edid-decode (hex):" with hex digits behind, which then end at the
/// first line that has something else. Any other file is raw bytes, of any length.
std::vector<uint8_t> edid_in(std::string_view content);

/// All that a file holds; standard input for "-". Throws std::runtime_error, its text naming the file, if it cannot be
/// read, or has more than 16 MiB, and so no EDID.
std::string read_file(const std::string& path);

/// Makes a file hold just `bytes`; for "-" they go to standard output. Throws std::runtime_error, its text naming the
/// file, if it cannot be written.
void write_file(const std::string& path, const std::vector<uint8_t>& bytes);

}  // namespace vgnctl
