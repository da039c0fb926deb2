#include "tools/vgnctl/property/property_lines.h"

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>

#include "tools/vgnctl/property/utf8.h"

namespace vgnctl {
namespace {

void append_hex(std::string& out, std::string_view bytes, std::string_view prefix) {
  constexpr std::string_view digits = "0123456789abcdef";
  for (const char character : bytes) {
    const auto byte = static_cast<uint8_t>(character);
    out += prefix;
    out += digits[byte >> 4U];
    out += digits[byte & 0xFU];
  }
}

/// C0, DELETE and C1, on the last of which terminals act too: U+0080 to U+009F, which are C2 80 to C2 9F.
bool is_control(std::string_view character) {
  const auto last = static_cast<uint8_t>(character.back());
  return character.size() == 1 ? last < 0x20 || last == 0x7F : character.front() == '\xC2' && last < 0xA0;
}

void append_escaped(std::string& out, std::string_view character) {
  switch (character.front()) {
    case '\\':
      out += "\\\\";
      break;
    case '\n':
      out += "\\n";
      break;
    case '\r':
      out += "\\r";
      break;
    case '\t':
      out += "\\t";
      break;
    default:
      append_hex(out, character, "\\x");
  }
}

void append_text(std::string& out, std::string_view text, std::string_view also_escaped) {
  while (!text.empty()) {
    const std::size_t length = utf8_length(text);
    const std::string_view character = text.substr(0, length == 0 ? 1 : length);
    if (length == 0 || is_control(character) || also_escaped.find(character) != std::string_view::npos) {
      append_escaped(out, character);
    } else {
      out += character;
    }
    text.remove_prefix(character.size());
  }
}

void add_member(nlohmann::json& line, const std::string& name, const std::string& text) {
  line[name] = text;
  if (!is_utf8(text)) {
    std::string bytes;
    append_hex(bytes, text, "");
    line[name + "_hex"] = bytes;
  }
}

}  // namespace

std::string text_line(std::string_view path, std::string_view value) {
  std::string line;
  append_text(line, path, "\\=");
  line += '=' + escaped_text(value);
  return line;
}

std::string escaped_text(std::string_view text) {
  std::string escaped;
  append_text(escaped, text, "\\");
  return escaped;
}

std::string json_line(const std::string& path, const std::string& value) {
  nlohmann::json line;
  add_member(line, "path", path);
  add_member(line, "value", value);
  return line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

}  // namespace vgnctl
