#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <string>

#include "tools/vgnctl/edid/edid_commands.h"
#include "tools/vgnctl/exit_status.h"
#include "tools/vgnctl/property/property_commands.h"
#include "tools/vgnctl/status/status_commands.h"

namespace {

constexpr const char* help_footer = R"(Exit status:
  0  done
  1  it could not be done; a message on standard error says why
  2  wrong use)";

int tell_failure(const std::string& text) {
  std::cerr << "vgnctl: " << text << '\n';
  return vgnctl::exit_failed;
}

/// What is wrong. CLI11 says of a command that it does not know only that one is required.
std::string fault_of(const CLI::App& command, const CLI::ParseError& error) {
  const auto unknown = command.remaining();
  if (error.get_name() == "RequiredError" && !command.get_subcommands({}).empty() && !unknown.empty()) {
    return "there is no command \"" + unknown.front() + '"';
  }
  return error.what();
}

/// Points at the help of the command that the line has got to.
int tell_bad_usage(const CLI::App& app, const CLI::ParseError& error) {
  const CLI::App* command = &app;
  std::string name = app.get_name();
  for (auto parsed = app.get_subcommands(); !parsed.empty(); parsed = command->get_subcommands()) {
    command = parsed.front();
    name += ' ' + command->get_name();
  }
  std::cerr << "vgnctl: " << fault_of(*command, error) << "\nSee " << name << " --help\n";
  return vgnctl::exit_bad_usage;
}

int parse_and_run(CLI::App& app, int argc, char** argv) {
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& asked_for_help) {
    return app.exit(asked_for_help);
  } catch (const CLI::RuntimeError& told) {
    return told.get_exit_code();
  } catch (const CLI::ParseError& error) {
    return tell_bad_usage(app, error);
  }
  return vgnctl::exit_done;
}

int run(int argc, char** argv) {
  CLI::App app("Looks at the appliance and steers it.", "vgnctl");
  app.require_subcommand(1);
  vgnctl::register_property_commands(app);
  vgnctl::register_edid_commands(app);
  vgnctl::register_status_command(app);
  app.footer(help_footer);  // at the end, as each subcommand begins with a copy of the footer
  const int status = parse_and_run(app, argc, argv);
  if (status == vgnctl::exit_done && !std::cout.flush()) {
    return tell_failure("standard output takes nothing more");
  }
  return status;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    return tell_failure(error.what());
  }
}
