#pragma once

namespace CLI {
class App;
}

namespace vgnctl {

/// Adds the command "status".
void register_status_command(CLI::App& app);

}  // namespace vgnctl
