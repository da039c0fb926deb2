#include "sim/demo/teller.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace sim {
namespace {

constexpr std::string_view identity_folder = "/sys/config/";
constexpr std::string_view last_of_identity = "fw_server_hash_compat";

/// What the daemon decides about displays and modes, in its own words.
bool is_decision(std::string_view text) {
  constexpr std::array<std::string_view, 4> words{"set_preferred_mode", "empty edid", "empty modes list", " display "};
  return std::any_of(words.begin(), words.end(),
                     [text](std::string_view word) { return text.find(word) != std::string_view::npos; });
}

/// What the simulation does for itself or repeats.
bool is_housekeeping(std::string_view text) {
  constexpr std::array<std::string_view, 5> words{" removed", "muted", "frozen", "resources listed", "audio clock"};
  return std::any_of(words.begin(), words.end(),
                     [text](std::string_view word) { return text.find(word) != std::string_view::npos; });
}

bool is_empty_splash_property(const property_event_t& event) {
  return event.verb == "sets" && event.path.starts_with("/xk_splash/") && event.value.empty();
}

/// What the teller's own program does. It reads and watches in order to see; what it sets, the rest of the system
/// would.
bool is_ours(const property_event_t& event) { return event.who == "vgn-demo"; }

std::string in_character(const property_event_t& event) {
  return "the rest of the system sets " + event.path + " to \"" + event.value + "\"";
}

story_line_t with(const story_line_t& line, std::string actor, std::string text) {
  return {line.time_us, std::move(actor), std::move(text)};
}

std::string unquoted(std::string_view text) {
  if (text.size() >= 2 && text.front() == '"' && text.back() == '"') {
    text = text.substr(1, text.size() - 2);
  }
  return std::string(text);
}

}  // namespace

std::optional<property_event_t> property_event_of(const story_line_t& line) {
  if (line.actor != "property") {
    return std::nullopt;
  }
  struct form_t {
    std::string_view verb;
    std::string_view before_value;
  };
  constexpr std::array<form_t, 3> forms{{{"reads", ": "}, {"watches", ""}, {"sets", " to "}}};
  for (const auto& form : forms) {
    const std::string verb = ' ' + std::string(form.verb) + " /";
    const std::size_t at = line.text.find(verb);
    if (at == std::string::npos) {
      continue;
    }
    const std::string rest = line.text.substr(at + verb.size() - 1);
    const std::size_t value = form.before_value.empty() ? std::string::npos : rest.find(form.before_value);
    return property_event_t{
        line.text.substr(0, at), std::string(form.verb), rest.substr(0, value),
        value == std::string::npos ? "" : unquoted(std::string_view(rest).substr(value + form.before_value.size()))};
  }
  return std::nullopt;
}

std::optional<story_line_t> teller_t::tell(const story_line_t& line) {
  if (tells_everything) {
    return line;
  }
  if (line.actor == "property") {
    return tell_property(line);
  }
  if (line.actor == "log") {
    const std::size_t program = line.text.find(": ");
    return is_decision(line.text) ? std::optional(with(line, "daemon", line.text.substr(program + 2))) : std::nullopt;
  }
  return is_housekeeping(line.text) ? std::nullopt : std::optional(line);
}

std::optional<story_line_t> teller_t::tell_property(const story_line_t& line) {
  const auto event = property_event_of(line);
  if (!event || is_empty_splash_property(*event)) {
    return std::nullopt;
  }
  if (is_ours(*event)) {
    return event->verb == "sets" ? std::optional(with(line, line.actor, in_character(*event))) : std::nullopt;
  }
  if (event->verb != "reads") {
    return line;
  }
  return event->path.starts_with(identity_folder)
             ? tell_identity(line, event->path.substr(identity_folder.size()), event->value)
             : std::nullopt;
}

std::optional<story_line_t> teller_t::tell_identity(const story_line_t& line, const std::string& name,
                                                    const std::string& value) {
  identity[name] = value;
  if (name != last_of_identity) {
    return std::nullopt;
  }
  return with(line, line.actor,
              property_event_of(line)->who + " reads its identity: " + identity["arch"] + ", " + identity["platform"] +
                  ", " + identity["part_number"] + ", firmware " + identity["fw_server_hash"]);
}

}  // namespace sim
