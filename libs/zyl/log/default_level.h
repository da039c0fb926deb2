#pragma once

#include <spdlog/common.h>

#include <optional>
#include <string_view>

namespace zyl {

/// The level that a text means as a logger's default: "off", "critical", "error", "warning", "info" or its synonym
/// "notice", "debug", "trace", in capitals, small letters or both. Nothing for any other text.
///
/// The level file has a parser of its own, `level_of`, with other rules.
std::optional<spdlog::level::level_enum> default_level_of(std::string_view text);

}  // namespace zyl
