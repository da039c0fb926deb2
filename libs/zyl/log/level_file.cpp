#include "zyl/log/level_file.h"

#include <rapidjson/document.h>
#include <spdlog/spdlog.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <utility>

namespace zyl {
namespace {

// What is wrong with a level file; thrown and caught in this file alone.
enum level_file_fault : int { not_opened = -1, not_an_object = -2, no_revision = -3, other_firmware = -4 };

std::string read_lines(const std::string& path) {
  std::ifstream file(path);
  if (!file) {
    throw int(not_opened);
  }
  std::string text;
  for (std::string line; std::getline(file, line);) {
    text += line;
  }
  return text;
}

rapidjson::Document parse_object(const std::string& path) {
  rapidjson::Document document;
  document.Parse(read_lines(path).c_str());
  if (document.HasParseError() || !document.IsObject()) {
    throw int(not_an_object);
  }
  return document;
}

std::string revision_of(const rapidjson::Document& document) {
  const auto member = document.FindMember("git_revision");
  if (member == document.MemberEnd() || !member->value.IsString()) {
    throw int(no_revision);
  }
  return member->value.GetString();
}

void apply_levels(const rapidjson::Value& levels) {
  for (const auto& member : levels.GetObject()) {
    const auto logger = spdlog::get(member.name.GetString());
    if (!logger) {
      continue;
    }
    const auto level = level_of(member.value.IsString() ? member.value.GetString() : "");
    logger->set_level(level);
    logger->flush_on(level);
  }
}

void load(const std::string& path, const std::string& program) {
  const auto document = parse_object(path);
  if (revision_of(document) != revision_of(parse_object("/build_info.json"))) {
    // A firmware update resets all levels. Whether rm succeeds changes nothing for this run.
    [[maybe_unused]] const int ignored = std::system(("/bin/rm -rf " + path).c_str());
    throw int(other_firmware);
  }
  const auto levels = document.FindMember(program.c_str());
  if (levels == document.MemberEnd()) {
    return;
  }
  if (!levels->value.IsObject()) {
    throw int(not_an_object);
  }
  apply_levels(levels->value);
}

}  // namespace

spdlog::level::level_enum level_of(std::string_view text) {
  using spdlog::level::level_enum;
  static constexpr std::array<std::pair<std::string_view, level_enum>, 14> words{{
      {"Off", level_enum::off},
      {"off", level_enum::off},
      {"Critical", level_enum::critical},
      {"critical", level_enum::critical},
      {"Error", level_enum::err},
      {"error", level_enum::err},
      {"Warning", level_enum::warn},
      {"warning", level_enum::warn},
      {"Info", level_enum::info},
      {"info", level_enum::info},
      {"Debug", level_enum::debug},
      {"debug", level_enum::debug},
      {"Trace", level_enum::trace},
      {"trace", level_enum::trace},
  }};
  for (const auto& [word, level] : words) {
    if (word == text) {
      return level;
    }
  }
  return level_enum::info;
}

void load_level_file(const std::string& path, const std::string& program) {
  try {
    load(path, program);
  } catch (int) {  // NOLINT(bugprone-empty-catch): a bad level file costs nothing but its settings
  }
}

}  // namespace zyl
