#include "tools/vgnctl/status/status_text.h"

#include <algorithm>
#include <cstddef>

#include "tools/vgnctl/property/property_lines.h"

namespace vgnctl {
namespace {

std::string value_text(const nlohmann::json& value) {
  if (value.is_null()) {
    return "not available";
  }
  if (value.is_string()) {
    const std::string text = escaped_text(value.get_ref<const std::string&>());
    return text.empty() ? R"("")" : text;
  }
  if (!value.is_array()) {
    return value.dump();
  }
  std::string words;
  for (const auto& word : value) {
    words += (words.empty() ? "" : " ") + word.dump();
  }
  return words;
}

bool has_unit(const status_item_t& item) { return !item.value.is_null() && !item.unit.empty(); }

/// `text` and as many blanks as it lacks of `width`.
std::string padded(const std::string& text, std::size_t width) {
  return text + std::string(width - std::min(width, text.size()), ' ');
}

}  // namespace

std::string status_table(const std::vector<status_item_t>& items) {
  std::size_t name_width = 0;
  // What has no unit behind it may be as long as it likes.
  std::size_t value_width = 0;
  for (const auto& item : items) {
    name_width = std::max(name_width, item.name.size());
    value_width = std::max(value_width, has_unit(item) ? value_text(item.value).size() : 0);
  }
  std::string table;
  for (const auto& item : items) {
    table += padded(item.name, name_width) + "  ";
    table += has_unit(item) ? padded(value_text(item.value), value_width) + "  " + item.unit : value_text(item.value);
    table += '\n';
  }
  return table;
}

std::string status_json(const std::vector<status_item_t>& items) {
  nlohmann::ordered_json object = nlohmann::ordered_json::object();
  for (const auto& item : items) {
    object[item.name] = item.value;
  }
  return object.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

}  // namespace vgnctl
