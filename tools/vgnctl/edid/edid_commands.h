#pragma once

namespace CLI {
class App;
}  // namespace CLI

namespace vgnctl {

/// Adds "edid", the group of commands that show what the daemon makes of a display's EDID, and what is known of modes.
void register_edid_commands(CLI::App& app);

/// The commands of the group that take texts instead of files.
void register_mode_commands(CLI::App& group);

}  // namespace vgnctl
