#pragma once

#include <string>
#include <string_view>

namespace vgnctl {

/// The line of a property for people and shells, path=value, without the newline at its end.
///
/// A backslash is written as \\, newline, carriage return and tab as \n, \r and \t, and each byte of another control
/// character or of what is no UTF-8 as \xHH. So is "=" in the path, and the first "=" of the line ends the path. Two
/// properties never give the same line.
std::string text_line(std::string_view path, std::string_view value);

/// `text` as the value of such a line.
std::string escaped_text(std::string_view text);

/// The line of a property for programs, {"path":...,"value":...}, without the newline at its end.
///
/// JSON knows characters only. Bytes that are no UTF-8 become U+FFFD; then "path_hex" or "value_hex" holds the whole
/// text too, two hex digits a byte.
std::string json_line(const std::string& path, const std::string& value);

}  // namespace vgnctl
