#pragma once

#include <string_view>

namespace edid_lib {

/// Whether the texts are the same but for the case of their ASCII letters, whatever locale the program has set. Every
/// byte counts, NUL as well.
bool same_ignoring_case(std::string_view a, std::string_view b);

/// Whether `part` stands anywhere in `text`, compared in the same way.
bool contains_ignoring_case(std::string_view text, std::string_view part);

}  // namespace edid_lib
