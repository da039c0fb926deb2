#include "zyl/log/level_file.h"

#include <rapidjson/document.h>
#include <spdlog/spdlog.h>

#include <array>
#include <cstdlib>
#include <fstream>
#include <utility>

namespace zyl {
namespace {

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

// Iteratively: the file comes from outside, and its nesting must not decide how deep the stack gets.
rapidjson::Document parse_object(std::string_view text) {
  rapidjson::Document document;
  document.Parse<rapidjson::kParseIterativeFlag>(text.data(), text.size());
  if (document.HasParseError() || !document.IsObject()) {
    throw int(not_an_object);
  }
  return document;
}

std::string text_of(const rapidjson::Value& value) {
  return value.IsString() ? std::string(value.GetString(), value.GetStringLength()) : std::string();
}

std::string revision_of(const rapidjson::Document& document) {
  const auto member = document.FindMember("git_revision");
  if (member == document.MemberEnd() || !member->value.IsString()) {
    throw int(no_revision);
  }
  return text_of(member->value);
}

std::vector<level_setting_t> settings_of(const rapidjson::Value& levels) {
  if (!levels.IsObject()) {
    throw int(not_an_object);
  }
  std::vector<level_setting_t> settings;
  for (const auto& member : levels.GetObject()) {
    settings.push_back({text_of(member.name), level_of(text_of(member.value))});
  }
  return settings;
}

void apply(const std::vector<level_setting_t>& settings) {
  for (const auto& setting : settings) {
    if (const auto logger = spdlog::get(setting.logger)) {
      logger->set_level(setting.level);
      logger->flush_on(setting.level);
    }
  }
}

// A firmware update resets all levels. Whether rm succeeds changes nothing for this run.
void remove_file(const std::string& path) {
  [[maybe_unused]] const int ignored = std::system(("/bin/rm -rf " + path).c_str());
}

}  // namespace

std::vector<level_setting_t> parse_level_file(std::string_view text, std::string_view revision,
                                              std::string_view program) {
  const auto document = parse_object(text);
  if (revision_of(document) != revision) {
    throw int(other_firmware);
  }
  for (const auto& member : document.GetObject()) {
    if (text_of(member.name) == program) {
      return settings_of(member.value);
    }
  }
  return {};
}

std::string parse_revision(std::string_view text) { return revision_of(parse_object(text)); }

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
    const std::string text = read_lines(path);
    apply(parse_level_file(text, parse_revision(read_lines("/build_info.json")), program));
  } catch (int fault) {
    // A bad level file costs nothing but its settings.
    if (fault == other_firmware) {
      remove_file(path);
    }
  }
}

}  // namespace zyl
