#pragma once

#include <string>

namespace zyl {

/// Gives a configuration file new content, so that no reader on the same file system ever sees half of it.
///
/// A file whose lines are the same already is not touched. Else the content goes to "/tmp/<last component>.tmp", which
/// `mv` then moves to `path`: the shell sees both names as they are, so they must hold no blanks or special characters,
/// and two writers of the same last component must not meet. The folder must exist, and `path` must not be one.
///
/// True if the file now has these lines. Else logs "Error writing config file: " and the path; the old file stays, and
/// perhaps the temporary one, which the next call writes anew.
bool write_config_file(const std::string& path, const std::string& content);

}  // namespace zyl
