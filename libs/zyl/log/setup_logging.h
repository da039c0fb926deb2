#pragma once

#include <string>

namespace zyl {

/// Gives every logger of the process its sink and, when `load_levels` is set, the levels of the program's level file
/// "/var/rwfs2/log_level.<program>.json".
///
/// `name` is the program's name or path; its last component becomes the program name. `sink_name` empty: syslog,
/// with the program name as identity. "stdout_color_sink_mt" or "stdout_color_sink_st": the colour console. Anything
/// else is a file name, rotated at 3 MiB with one old file kept; throws `spdlog::spdlog_ex` if it cannot be opened.
///
/// Call it once, at the start of `main`, before other threads exist. Loggers made later get the sink too, but not the
/// level file's settings.
void setup_logging(const std::string& name, bool load_levels, const std::string& sink_name);

/// The program name that `setup_logging` was given; empty before.
const std::string& program_name();

}  // namespace zyl
