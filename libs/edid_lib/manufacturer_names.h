#pragma once

#include <string_view>

namespace edid_lib {

/// The name that people know the maker of a display by, "Acer" for "ACR"; `id` itself, living as long as what was
/// given, if it is not among the makers known here.
std::string_view manufacturer_name(std::string_view id);

}  // namespace edid_lib
