#include <CLI/CLI.hpp>
#include <iostream>
#include <memory>
#include <stdexcept>
#include <string>

#include "tools/vgnctl/edid/edid_commands.h"
#include "tools/vgnctl/edid/mode_json.h"
#include "tools/vgnctl/edid/mode_text.h"

namespace vgnctl {
namespace {

constexpr const char* mode_footer = R"(TEXT is SIZE@RATE, "i" behind the size if interlaced, and one word more: RB or
the pixel aspect. What does not parse is 0; only a size that is no number is an
error. What the daemon shows, such as 1920x1080p60, is a mode, too.

Examples:
  vgnctl edid mode 1920x1080i@60
  vgnctl edid mode '720x480@59.94 8:9'
  vgnctl edid mode --json 640x480@60 | jq .cta_vic)";

constexpr const char* compare_footer =
    R"(By width, height, then the texts of the nominal rates. The chain compares modes
with its limits so.

Examples:
  vgnctl edid compare 1920x1080@120 1920x1080@60        the first is less)";

constexpr const char* color_footer = R"(A word that stands for nothing is read as "Default".

Examples:
  vgnctl edid color 'color_format_t{BT.709,RGB,444,Limited,24 bit}')";

constexpr const char* tables_footer = R"(A row is key, number, timing. The number is the bit of an established timing,
the video code of CTA-861, or the video code of HDMI. A timing is clock,
horizontal then vertical active, sync start, sync end and total, and flags: 1
positive and 2 negative horizontal sync, 4 and 8 vertical sync, 0x10 interlaced,
0x1000 each pixel twice.

Examples:
  vgnctl edid tables cta
  vgnctl edid tables dmt --json | jq -r '.rows[].key')";

/// What a command line can give to a command.
struct arguments_t {
  std::string first;
  std::string second;
  bool json = false;
};

/// What a command prints: the JSON value that there is for the texts, or lines for people.
struct printer_t {
  json_t (*value)(const arguments_t& arguments);
  std::string (*lines)(const arguments_t& arguments);
};

edid_lib::vid_resolution_t mode_in(const std::string& text) {
  const parsed_mode_t parsed = parse_mode(text);
  if (!parsed.mode) {
    throw std::runtime_error('"' + text + "\" is no mode: its size " +
                             (parsed.error == "out_of_range" ? "is out of range" : "is no number"));
  }
  return *parsed.mode;
}

std::string color_line(const std::string& text) {
  const auto format = parse_color(text);
  if (!format) {
    throw std::runtime_error('"' + text + "\" is no colour format, color_format_t{...}");
  }
  return color_text(*format) + '\n';
}

/// Adds a command. Its arguments live as long as the command line.
CLI::App* add_command(CLI::App& group, const char* name, const char* description, const char* footer,
                      const std::shared_ptr<arguments_t>& arguments, printer_t print) {
  CLI::App* command = group.add_subcommand(name, description);
  command->footer(footer);
  command->add_flag("--json", arguments->json, "Print a JSON value");
  command->callback([arguments, print] {
    std::cout << (arguments->json ? line_of(print.value(*arguments)) + '\n' : print.lines(*arguments));
  });
  return command;
}

CLI::Option* add_text(CLI::App* command, const char* name, std::string& text, const char* description) {
  return command->add_option(name, text, description)->required()->type_name("");
}

void add_mode(CLI::App& group) {
  const auto arguments = std::make_shared<arguments_t>();
  CLI::App* command = add_command(group, "mode", "Print what is known of a mode", mode_footer, arguments,
                                  {[](const arguments_t& given) { return mode_report(given.first); },
                                   [](const arguments_t& given) { return mode_lines(mode_in(given.first)); }});
  add_text(command, "TEXT", arguments->first, "the mode");
}

void add_compare(CLI::App& group) {
  const auto arguments = std::make_shared<arguments_t>();
  CLI::App* command = add_command(
      group, "compare", "Print which of two modes is greater", compare_footer, arguments,
      {[](const arguments_t& given) { return comparison(given.first, given.second); },
       [](const arguments_t& given) { return comparison_line(mode_in(given.first), mode_in(given.second)); }});
  add_text(command, "A", arguments->first, "a mode");
  add_text(command, "B", arguments->second, "another mode");
}

void add_color(CLI::App& group) {
  const auto arguments = std::make_shared<arguments_t>();
  CLI::App* command =
      add_command(group, "color", "Read a colour format and print what was read", color_footer, arguments,
                  {[](const arguments_t& given) { return color_report(given.first); },
                   [](const arguments_t& given) { return color_line(given.first); }});
  add_text(command, "TEXT", arguments->first, "the colour format");
}

void add_tables(CLI::App& group) {
  const auto arguments = std::make_shared<arguments_t>();
  CLI::App* command =
      add_command(group, "tables", "Print a timing table in the order of its keys", tables_footer, arguments,
                  {[](const arguments_t& given) { return table_report(given.first); },
                   [](const arguments_t& given) { return table_lines(given.first); }});
  add_text(command, "NAME", arguments->first, "established, dmt, cta or hdmi")
      ->check(CLI::Validator(CLI::IsMember({"established", "dmt", "cta", "hdmi"})).description(""));
}

}  // namespace

void register_mode_commands(CLI::App& group) {
  add_mode(group);
  add_compare(group);
  add_color(group);
  add_tables(group);
}

}  // namespace vgnctl
