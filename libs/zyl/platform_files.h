#pragma once

#include <string>
#include <string_view>

namespace zyl {

/// The decimal number at the start of the file's first line, after blanks if there are any and with a sign if it has
/// one; `fallback` without a file, a line or a number.
int number_in_first_line(const std::string& path, int fallback);

/// Whether any line of the file contains `word`; false for a file that cannot be read.
bool any_line_contains(const std::string& path, std::string_view word);

}  // namespace zyl
