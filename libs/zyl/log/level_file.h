#pragma once

#include <spdlog/common.h>

#include <string>
#include <string_view>

namespace zyl {

/// Applies the level file of a program to the registered loggers: level and flush level.
///
/// The file, JSON: {"git_revision": REVISION, PROGRAM: {LOGGER: LEVEL, ...}}. REVISION must equal the member of that
/// name in "/build_info.json"; a file written for another firmware is deleted and changes nothing. Loggers that do
/// not exist are passed over. A file that is absent or malformed changes nothing.
void load_level_file(const std::string& path, const std::string& program);

/// The level that a text of the level file means: "Off", "Critical", "Error", "Warning", "Info", "Debug", "Trace",
/// capitalised so or all lower case. Any other text means info.
spdlog::level::level_enum level_of(std::string_view text);

}  // namespace zyl
