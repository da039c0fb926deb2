#pragma once

namespace CLI {
class App;
}

namespace vgnctl {

/// Adds `property get PATH`, `property set PATH VALUE` and `property monitor PATH...`. `status` gets what the process
/// shall exit with once a command has run: 0, 1 if the property service does not do what is asked, 2 on bad usage.
void add_property_commands(CLI::App& app, int& status);

}  // namespace vgnctl
