// The text of a level file, for the firmware "r1" and the program "vgn_control".
#include "zyl/log/level_file.h"

#include "fuzz/target.h"

namespace {

using fuzz::require;

constexpr std::string_view firmware = "r1";
constexpr std::string_view program = "vgn_control";

using settings_t = std::vector<zyl::level_setting_t>;

/// What a parse function said: its value, or the fault that it threw instead; 0 for none.
template <typename T>
struct outcome_t {
  T value;
  int fault = 0;
};

template <typename Parse>
auto outcome_of(Parse parse) -> outcome_t<decltype(parse())> {
  try {
    return {parse(), 0};
  } catch (int fault) {
    return {{}, fault};
  }
}

outcome_t<settings_t> parse(std::string_view text, std::string_view revision) {
  return outcome_of([&] { return zyl::parse_level_file(text, revision, program); });
}

outcome_t<std::string> revision_of(std::string_view text) {
  return outcome_of([&] { return zyl::parse_revision(text); });
}

std::string quoted(std::string_view text) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string out = "\"";
  for (const char c : text) {
    const auto code = static_cast<uint8_t>(c);
    if (c == '"' || c == '\\') {
      out += {'\\', c};
    } else if (code < 0x20) {
      out.append("\\u00").append({digits[code >> 4U], digits[code & 15U]});
    } else {
      out += c;
    }
  }
  return out + '"';
}

/// The file that makes these settings.
std::string written(const settings_t& settings) {
  constexpr const char* words[] = {"Trace", "debug", "Info", "warning", "Error", "critical", "off"};
  std::string members;
  for (const auto& setting : settings) {
    members += (members.empty() ? "" : ",") + quoted(setting.logger) + ":" + quoted(words[setting.level]);
  }
  return R"({"git_revision":)" + quoted(firmware) + "," + quoted(program) + ":{" + members + "}}";
}

void check_settings(std::string_view text, const settings_t& settings) {
  const auto again = parse(written(settings), firmware);
  require(again.fault == 0 && again.value == settings, "settings that are written and read are the same");
  if (text.find('\0') == std::string_view::npos) {
    const auto cut = parse(text.substr(0, text.rfind('}')), firmware);
    require(cut.fault == zyl::not_an_object, "a file that was cut short makes no settings");
  }
}

/// The revision, told by itself, must explain what became of the file.
void check_revision(std::string_view text, const outcome_t<settings_t>& file) {
  const auto revision = revision_of(text);
  if (revision.fault != 0) {
    require(file.fault == revision.fault, "a file whose revision cannot be told has the same fault");
  } else if (revision.value != firmware) {
    require(file.fault == zyl::other_firmware, "a file of another firmware is known");
    require(parse(text, revision.value).fault != zyl::other_firmware, "and right for that firmware");
  } else {
    require(file.fault == 0 || file.fault == zyl::not_an_object, "a file of this firmware makes settings");
  }
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto file = parse(text, firmware);
  check_revision(text, file);
  if (file.fault == 0) {
    check_settings(text, file.value);
  }
  return 0;
}
