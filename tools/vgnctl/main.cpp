#include <CLI/CLI.hpp>

#include "tools/vgnctl/property/property_commands.h"

namespace {

constexpr int bad_usage = 2;

}  // namespace

int main(int argc, char** argv) {
  CLI::App app("Looks at the appliance and steers it.", "vgnctl");
  app.require_subcommand(1);
  int status = 0;
  vgnctl::add_property_commands(app, status);
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& asked_for_help) {
    return app.exit(asked_for_help);
  } catch (const CLI::ParseError& error) {
    app.exit(error);
    return bad_usage;
  }
  return status;
}
