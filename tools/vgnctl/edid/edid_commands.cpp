#include "tools/vgnctl/edid/edid_commands.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/vgnctl/edid/display_text.h"
#include "tools/vgnctl/edid/edid_input.h"
#include "tools/vgnctl/edid/edid_json.h"
#include "tools/vgnctl/edid/filter_options.h"
#include "tools/vgnctl/edid/hex_text.h"
#include "tools/vgnctl/edid/mode_text.h"
#include "tools/vgnctl/exit_status.h"

namespace vgnctl {
namespace {

using edid_lib::edid_t;

// Help keeps to the 80 columns of a plain terminal.

constexpr const char* group_footer = R"(FILE is an EDID of any length in raw bytes, or in hex text: at least 256 hex
digits with nothing but white space between them, or what edid-decode has
printed, with its block "edid-decode (hex):". --raw takes hex text for bytes,
too. "-" is standard input, which can be read once. Bytes that are wrong are
repaired as the daemon does it, so any file gives an answer.

The chain is what the daemon asks of a mode before it uses it for an output.
Modes are texts such as 1920x1080@60, 1920x1080i@60 or "720x480@59.94 8:9".
They compare by width, height, then rate; rates as texts, so 60 is greater than
120.

Examples:
  vgnctl edid report /sys/class/drm/card0-HDMI-A-1/edid
  vgnctl edid modes --usable tv.bin
  ssh appliance cat display.bin | vgnctl edid info -
  vgnctl edid modes --json *.bin | jq -r '.modes[0].key'
  vgnctl edid mode 1920x1080@60

Exit status:
  0  done
  1  a FILE cannot be read; OUT or standard output cannot be written; without
     --json also a TEXT that is no mode or no colour format
  2  wrong use)";

constexpr const char* report_footer = R"(Each block with its fields, then the whole list of modes in the order in which
the daemon prefers them, and what the chain says of each.

Examples:
  vgnctl edid report display.bin
  vgnctl edid report --max 1920x1200@60 display.bin)";

constexpr const char* modes_footer = R"(The list is in the order in which the daemon prefers them: it takes the first
usable one. A mode that the display tells several times is there several times.
Options of the chain go with --usable.

Examples:
  vgnctl edid modes display.bin
  vgnctl edid modes --usable --min 1280x720@50 display.bin
  vgnctl edid modes --usable --json *.bin | jq -c '.refused[]')";

constexpr const char* info_footer = R"(Examples:
  vgnctl edid info display.bin
  vgnctl edid info --json *.bin | jq -r .base.manufacturer_name)";

constexpr const char* rewrite_footer = R"(The EDID gets only the modes that pass the chain, 640x480@60 if none does, and
the checksums are right. It goes to OUT as raw bytes, "-o -" sends these to
standard output, unless --json wants that; without -o or --json it is printed
as hex text.

Examples:
  vgnctl edid rewrite display.bin -o filtered.bin
  vgnctl edid rewrite display.bin | edid-decode
  vgnctl edid rewrite -o - display.bin | vgnctl edid modes -)";

/// What a command line can give to a command.
struct arguments_t {
  std::vector<std::string> files;
  bool raw = false;
  bool json = false;
  bool usable = false;
  std::string out;
  filter_options_t filter;
};

/// What a command makes of an EDID: something to print, with its line feeds.
using show_t = std::function<std::string(edid_t& edid, const arguments_t& arguments)>;

/// Nothing for a file that cannot be read, which is told.
std::optional<edid_t> read_edid(const std::string& file, bool raw) {
  try {
    const std::string content = read_file(file);
    return edid_t(raw ? std::vector<uint8_t>(content.begin(), content.end()) : edid_in(content));
  } catch (const std::runtime_error& error) {
    std::cerr << "vgnctl: " << error.what() << '\n';
    return std::nullopt;
  }
}

/// Several files have their names above what is printed of them.
void print_heading(const arguments_t& arguments, const std::string& file) {
  if (!arguments.json && arguments.files.size() > 1) {
    std::cout << (&file == &arguments.files.front() ? "" : "\n") << "==> " << file << " <==\n";
  }
}

void show_files(const arguments_t& arguments, const show_t& show) {
  bool all_read = true;
  for (const std::string& file : arguments.files) {
    std::optional<edid_t> edid = read_edid(file, arguments.raw);
    all_read = all_read && edid.has_value();
    if (edid) {
      print_heading(arguments, file);
      std::cout << show(*edid, arguments);
    } else if (arguments.json) {
      std::cout << "null\n";
    }
  }
  if (!all_read) {
    throw CLI::RuntimeError(exit_failed);
  }
}

std::string report(edid_t& edid, const arguments_t& arguments) { return filter_of(arguments.filter).report(edid); }

std::string modes(edid_t& edid, const arguments_t& arguments) {
  if (!arguments.usable) {
    return arguments.json ? line_of(modes_report(edid)) + '\n' : list_lines(modes_of(edid));
  }
  const auto filter = filter_of(arguments.filter);
  return arguments.json ? line_of(usable_report(edid, filter)) + '\n' : usable_lines(modes_of(edid), filter);
}

std::string info(edid_t& edid, const arguments_t& arguments) {
  return arguments.json ? line_of(info_report(edid)) + '\n' : display_lines(edid);
}

std::string rewrite(edid_t& edid, const arguments_t& arguments) {
  edid_t filtered = filter_of(arguments.filter).filtered_edid(edid);
  if (!arguments.out.empty()) {
    write_file(arguments.out, filtered.assemble());
  }
  if (arguments.json) {
    return line_of(rewrite_report(filtered)) + '\n';
  }
  return arguments.out.empty() ? hex_lines(filtered.assemble()) : "";
}

/// Throws CLI::ValidationError for what is wrong with them, before there is any output.
void check(const arguments_t& arguments) {
  filter_of(arguments.filter);
  if (!arguments.out.empty() && arguments.files.size() > 1) {
    throw CLI::ValidationError("--output", "there is more than one FILE");
  }
  if (arguments.json && arguments.out == "-") {
    throw CLI::ValidationError("--output", "standard output is for the value of --json");
  }
  if (std::count(arguments.files.begin(), arguments.files.end(), "-") > 1) {
    throw CLI::ValidationError("FILE", "\"-\" is there more than once");
  }
}

/// Adds a command; its arguments live as long as the command line.
CLI::App* add_command(CLI::App& group, const char* name, const char* description, const char* footer,
                      const std::shared_ptr<arguments_t>& arguments, const show_t& show) {
  CLI::App* command = group.add_subcommand(name, description);
  command->footer(footer);
  command->add_option("FILE", arguments->files, "EDIDs, \"-\" for standard input")->required()->type_name("");
  command->add_flag("--raw", arguments->raw, "Take each FILE for raw bytes");
  command->callback([arguments, show] {
    check(*arguments);
    show_files(*arguments, show);
  });
  return command;
}

void add_json(CLI::App* command, arguments_t& arguments) {
  command->add_flag("--json", arguments.json, "Print a JSON value for each FILE, a line each");
}

void add_report(CLI::App& group) {
  const auto arguments = std::make_shared<arguments_t>();
  CLI::App* command = add_command(group, "report", "Print all that an EDID says, and judge its modes", report_footer,
                                  arguments, report);
  add_filter_options(*command, arguments->filter);
}

void add_modes(CLI::App& group) {
  const auto arguments = std::make_shared<arguments_t>();
  CLI::App* command = add_command(group, "modes", "Print the list of modes", modes_footer, arguments, modes);
  command->add_flag("--usable", arguments->usable, "Tell modes that pass the chain from others");
  add_json(command, *arguments);
  add_filter_options(*command, arguments->filter);
  command->parse_complete_callback([command, arguments] {
    if (has_filter_options(*command) && !arguments->usable) {
      throw CLI::RequiresError("an option of the chain", "--usable");
    }
  });
}

void add_info(CLI::App& group) {
  const auto arguments = std::make_shared<arguments_t>();
  CLI::App* command = add_command(group, "info", "Print what a display says of itself", info_footer, arguments, info);
  add_json(command, *arguments);
}

void add_rewrite(CLI::App& group) {
  const auto arguments = std::make_shared<arguments_t>();
  CLI::App* command = add_command(group, "rewrite", "Make an EDID of the modes that pass the chain", rewrite_footer,
                                  arguments, rewrite);
  command->add_option("-o,--output", arguments->out, "File for the bytes of the EDID")->type_name("OUT");
  add_json(command, *arguments);
  add_filter_options(*command, arguments->filter);
}

}  // namespace

void register_edid_commands(CLI::App& app) {
  CLI::App* group = app.add_subcommand("edid", "Show what an EDID says, and what is known of modes");
  group->require_subcommand(1);
  group->footer(group_footer);
  add_report(*group);
  add_modes(*group);
  add_info(*group);
  add_rewrite(*group);
  register_mode_commands(*group);
}

}  // namespace vgnctl
