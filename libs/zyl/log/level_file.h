#pragma once

#include <spdlog/common.h>

#include <string>
#include <string_view>
#include <vector>

namespace zyl {

/// What is wrong with a level file: the integers that the functions below throw, as plain `int`.
enum level_file_fault : int {
  not_opened = -1,     ///< The file cannot be opened.
  not_an_object = -2,  ///< Not JSON, or the root or the program's member is no object.
  no_revision = -3,    ///< No member "git_revision", or it is no text.
  other_firmware = -4  ///< The file was written for another firmware.
};

/// What a level file says of one logger.
struct level_setting_t {
  std::string logger;
  spdlog::level::level_enum level;

  bool operator==(const level_setting_t&) const = default;
};

/// Takes a level file's text apart: the settings for `program`, in the file's order; none if it has no such member.
///
/// The text, JSON: {"git_revision": REVISION, PROGRAM: {LOGGER: LEVEL, ...}, ...}. `revision` is the running
/// firmware's. Throws `int`: not_an_object, no_revision, other_firmware. Touches nothing but its arguments; any bytes
/// will do.
std::vector<level_setting_t> parse_level_file(std::string_view text, std::string_view revision,
                                              std::string_view program);

/// The member "git_revision" of a JSON object such as the text of "/build_info.json". Throws `int`: not_an_object,
/// no_revision.
std::string parse_revision(std::string_view text);

/// Applies the level file of a program to the registered loggers: level and flush level.
///
/// The running firmware's revision comes from "/build_info.json"; a file written for another firmware is deleted and
/// changes nothing. Loggers that do not exist are passed over. A file that is absent or malformed changes nothing.
/// Throws nothing of `level_file_fault`.
void load_level_file(const std::string& path, const std::string& program);

/// The level that a text of the level file means: "Off", "Critical", "Error", "Warning", "Info", "Debug", "Trace",
/// capitalised so or all lower case. Any other text means info.
spdlog::level::level_enum level_of(std::string_view text);

}  // namespace zyl
