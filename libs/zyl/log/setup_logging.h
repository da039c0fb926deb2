#pragma once

#include <string>

namespace zyl {

/// Gives every logger of the process its sink and, when `load_levels` is set, the levels of the program's level file
/// "/var/rwfs2/log_level.<program>.json".
///
/// `name` is the program's name or path; its last component becomes the program name. `sink_name` empty: syslog, with
/// the program name as identity, message texts alone. "stdout_color_sink_mt" or "stdout_color_sink_st": the colour
/// console. Anything else is a file name: appended to, and moved aside at 3 MiB to one old file ("x.log" to
/// "x.1.log"). Throws `spdlog::spdlog_ex` if that file cannot be opened, which it tries five times, 10 ms apart.
///
/// Call it once, at the start of `main`, before other threads exist. Loggers made later get the sink too, but not the
/// level file's settings.
void setup_logging(const std::string& name, bool load_levels, const std::string& sink_name);

/// `setup_logging`, then the levels of the environment variable SPDLOG_LEVEL on top of the level file's.
///
/// Its value, LEVELS, is one setting or several separated by commas; blanks around a word count for nothing. LEVEL is
/// for every logger that no other setting names, LOGGER=LEVEL for one:
///
///   SPDLOG_LEVEL=debug
///   SPDLOG_LEVEL=off,lin_udev=trace,zyl_event=warning
///
/// LEVEL is "trace", "debug", "info", "warning" or "warn", "error" or "err", "critical", "off", in capitals or small
/// letters; a setting with another level is ignored, as is a logger that does not exist, and a value that is empty or
/// longer than 512 characters. The order does not matter, but of two settings for the same logger the last counts.
/// Loggers made later are not reached. Flush levels stay as they are.
void setup_logging_with_environment(const std::string& name, bool load_levels, const std::string& sink_name);

/// `setup_logging`, then the levels of each argument of the form "SPDLOG_LEVEL=LEVELS", in their order and with the
/// syntax given above. `argv[0]`, the program's name, is not looked at; the arguments stay in place.
void setup_logging_with_arguments(const std::string& name, bool load_levels, const std::string& sink_name, int argc,
                                  const char* const* argv);

/// The program name that `setup_logging` was given; empty before.
const std::string& program_name();

}  // namespace zyl
