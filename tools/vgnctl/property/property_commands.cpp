#include "tools/vgnctl/property/property_commands.h"

#include <CLI/CLI.hpp>
#include <functional>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "tools/vgnctl/property/property_lines.h"
#include "tools/vgnctl/property/property_session.h"
#include "zyl/exceptions.h"

namespace vgnctl {
namespace {

// Help keeps to the 80 columns of a plain terminal.

constexpr const char* group_footer = R"(Output:
  One line path=value a property. A backslash is written as \\, and as \n, \r,
  \t or \xHH what could be mistaken for something else: control characters,
  bytes that are no UTF-8, and "=" in a path, so the first "=" of a line ends
  the path. The printf %b of bash turns them back.
  With --json one object a line: {"path":"/a","value":"1"}. Bytes that are no
  UTF-8 are U+FFFD there; then a member "path_hex" or "value_hex" holds the
  whole text too, two hex digits a byte.

Examples:
  vgnctl property dump
  vgnctl property list /sys/config
  vgnctl property get /tarn/design/status
  vgnctl property set /tarn/mode/id on
  vgnctl property monitor /tarn/mode/id /tarn/design/status
  vgnctl property dump --json | jq -r 'select(.value == "").path'

Arguments:
  Behind -- all are taken as they are, also -1, ++ and what a command is called.
  PATH and VALUE have at most 65517 bytes together.

Exit status:
  0  done
  1  no property service listens at /tmp/.tarn_property_ipc, it takes no
     request, refuses it or has gone, or does not answer get, set or create;
     list and dump take half a second of silence for the end
  2  wrong use)";

constexpr const char* get_footer = R"(Examples:
  vgnctl property get /tarn/design/status
  line=$(vgnctl property get /tarn/mode/id) && [ "${line#*=}" = on ])";

constexpr const char* set_footer = R"(Whoever monitors the property is told, also when the value is the one that it
had. Status 1 if the request does not go out, or if the service does not know
the property afterwards. Whether it kept the value is not looked at.

Examples:
  vgnctl property set /tarn/mode/id on
  vgnctl property set /tarn/mode/id ''        the empty value
  vgnctl property set /sys/offset -- -1       a value that begins with "-"
  vgnctl property set /sys/offset -- ++       or that is "++")";

constexpr const char* create_footer = R"(A new property is empty; one that exists keeps its value.
Status 1 if the request does not go out, or if the service does not know the
property afterwards.

Examples:
  vgnctl property create /sys/name)";

constexpr const char* list_footer = R"(The property PATH itself is not below PATH. The list ends
when the service says so or is silent for half a second.

Examples:
  vgnctl property list /sys
  vgnctl property list --json /sys | jq -r .path)";

constexpr const char* dump_footer = R"(With PATH it prints what "list PATH" prints. It ends when the
service says so or is silent for half a second.

Examples:
  vgnctl property dump | grep hdmi
  vgnctl property dump /sys/config)";

constexpr const char* monitor_footer =
    R"(A line comes at once whenever somebody sets one of the
properties, also when the value is the one that it had. The values from before
are not printed. A property may come to exist later. A path in brackets is not
taken as one: [/a,/b] stands for /a and /b.

Ends by the signal that interrupts it, as of Ctrl-C, or with exit status 1 when
the service goes away.

Examples:
  vgnctl property monitor /tarn/mode/id
  vgnctl property monitor --json /sys/hdmi1_properties /sys/hdmi2_properties)";

/// What a command line can give to a command.
struct arguments_t {
  std::string path;
  std::vector<std::string> paths;
  std::string value;
  bool json = false;
};

/// Adds a command; its arguments live as long as the command line.
template <typename run_t>
CLI::App* add_command(CLI::App& group, const char* name, const char* description, const char* footer,
                      const std::shared_ptr<arguments_t>& arguments, run_t run) {
  CLI::App* command = group.add_subcommand(name, description);
  command->footer(footer);
  command->callback([arguments, run] { run(*arguments); });
  return command;
}

/// What is wrong with so many bytes in one request; empty if nothing is.
std::string fault_of_size(std::size_t size) {
  return size <= zyl::longest_property
             ? ""
             : std::to_string(size) + " bytes are too long, " + std::to_string(zyl::longest_property) + " is the most";
}

template <typename paths_t>
CLI::Option* add_optional_path(CLI::App* command, paths_t& path, const char* description) {
  const auto fault_of = [](const std::string& text) {
    return text.empty() ? "must not be empty" : fault_of_size(text.size());
  };
  return command->add_option("PATH", path, description)->check(CLI::Validator(fault_of, ""))->type_name("");
}

template <typename paths_t>
void add_path(CLI::App* command, paths_t& path, const char* description) {
  add_optional_path(command, path, description)->required();
}

void add_json(CLI::App* command, arguments_t& arguments, const char* description = "Print JSON lines") {
  command->add_flag("--json", arguments.json, description);
}

constexpr const char* json_of_nothing = "No difference: nothing is printed";

void print(const arguments_t& arguments, const std::string& path, const std::string& value) {
  std::cout << (arguments.json ? json_line(path, value) : text_line(path, value)) << '\n';
}

property_session_t::property_handler_t printer(const arguments_t& arguments) {
  return [&arguments](const std::string& path, const std::string& value) { print(arguments, path, value); };
}

void get(const arguments_t& arguments) {
  print(arguments, arguments.path, property_session_t().get(arguments.path).value_or(""));
}

void set(const arguments_t& arguments) {
  const std::string fault = fault_of_size(arguments.path.size() + arguments.value.size());
  if (!fault.empty()) {
    throw CLI::ValidationError("PATH and VALUE", fault);
  }
  property_session_t().set(arguments.path, arguments.value);
}

void create(const arguments_t& arguments) { property_session_t().create(arguments.path); }

void list(const arguments_t& arguments) { property_session_t().list(arguments.path, printer(arguments)); }

void dump(const arguments_t& arguments) {
  if (arguments.path.empty()) {
    property_session_t().dump(printer(arguments));
  } else {
    list(arguments);
  }
}

void monitor(const arguments_t& arguments) {
  const auto print_now = [&arguments](const std::string& path, const std::string& value) {
    print(arguments, path, value);
    if (!std::cout.flush()) {
      throw zyl::exception_t("standard output takes nothing more");
    }
  };
  const auto warn = [] { std::cerr << "vgnctl: one of the properties does not exist\n"; };
  property_session_t().monitor(arguments.paths, print_now, warn);
}

void add_get(CLI::App& group) {
  const auto arguments = std::make_shared<arguments_t>();
  CLI::App* command =
      add_command(group, "get", "Print a property; one that does not exist is empty", get_footer, arguments, get);
  add_path(command, arguments->path, "path of the property");
  add_json(command, *arguments);
}

void add_set(CLI::App& group) {
  const auto arguments = std::make_shared<arguments_t>();
  CLI::App* command =
      add_command(group, "set", "Write a property; returns when the service has it", set_footer, arguments, set);
  add_path(command, arguments->path, "path of the property");
  command->add_option("VALUE", arguments->value, "its new value, behind -- if it begins with -")
      ->required()
      ->type_name("");
  add_json(command, *arguments, json_of_nothing);
}

void add_create(CLI::App& group) {
  const auto arguments = std::make_shared<arguments_t>();
  CLI::App* command =
      add_command(group, "create", "Make a property exist; returns when it does", create_footer, arguments, create);
  add_path(command, arguments->path, "path of the property");
  add_json(command, *arguments, json_of_nothing);
}

void add_list(CLI::App& group) {
  const auto arguments = std::make_shared<arguments_t>();
  CLI::App* command = add_command(group, "list", "Print all properties below a path", list_footer, arguments, list);
  add_path(command, arguments->path, "the path above them");
  add_json(command, *arguments);
}

void add_monitor(CLI::App& group) {
  const auto arguments = std::make_shared<arguments_t>();
  CLI::App* command = add_command(group, "monitor", "Print each change of properties, until interrupted",
                                  monitor_footer, arguments, monitor);
  add_path(command, arguments->paths, "paths of the properties");
  add_json(command, *arguments);
}

void add_dump(CLI::App& group) {
  const auto arguments = std::make_shared<arguments_t>();
  CLI::App* command =
      add_command(group, "dump", "Print all properties, or those below a path", dump_footer, arguments, dump);
  add_optional_path(command, arguments->path, "the path above them");
  add_json(command, *arguments);
}

}  // namespace

void register_property_commands(CLI::App& app) {
  CLI::App* group = app.add_subcommand("property", "Read, write and watch the appliance's properties");
  group->require_subcommand(1);
  group->footer(group_footer);
  add_get(*group);
  add_set(*group);
  add_create(*group);
  add_list(*group);
  add_monitor(*group);
  add_dump(*group);
}

}  // namespace vgnctl
