#include "zyl/log/default_level.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace zyl {
namespace {

std::string lower_case(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  return lower;
}

}  // namespace

std::optional<spdlog::level::level_enum> default_level_of(std::string_view text) {
  using spdlog::level::level_enum;
  static constexpr std::array<std::pair<std::string_view, level_enum>, 8> words{{
      {"off", level_enum::off},
      {"critical", level_enum::critical},
      {"error", level_enum::err},
      {"warning", level_enum::warn},
      {"info", level_enum::info},
      {"notice", level_enum::info},
      {"debug", level_enum::debug},
      {"trace", level_enum::trace},
  }};
  const std::string lower = lower_case(text);
  for (const auto& [word, level] : words) {
    if (word == lower) {
      return level;
    }
  }
  return std::nullopt;
}

}  // namespace zyl
