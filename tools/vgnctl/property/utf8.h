#pragma once

#include <cstddef>
#include <string_view>

namespace vgnctl {

/// Bytes of the UTF-8 character at the front of `text`: 1 to 4, or 0 if there is none. Overlong forms, surrogates and
/// numbers above U+10FFFF are none.
std::size_t utf8_length(std::string_view text);

/// Whether all of `text` is UTF-8.
bool is_utf8(std::string_view text);

}  // namespace vgnctl
