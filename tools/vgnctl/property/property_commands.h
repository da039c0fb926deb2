#pragma once

namespace CLI {
class App;
}

namespace vgnctl {

/// Adds the group "property": get, set, create, list, monitor, dump.
void register_property_commands(CLI::App& app);

}  // namespace vgnctl
