#pragma once

#include <spdlog/logger.h>

#include <string_view>

namespace zyl {

/// Returns the logger called `name`, made on first use on the default logger's sinks, and gives it its default level.
///
/// `default_level` is a text as `default_level_of` takes it; any other text leaves the level as it is, which is info
/// for a new logger. A call after `setup_logging` so undoes what the level file said of this logger.
///
/// Meant for a file-static reference, before `main`: it touches nothing but spdlog's registry. The first call in a
/// process also makes the logger "default" and installs it as spdlog's default logger. Loggers live as long as the
/// process, its exit handlers included, and let no exception out of a logging call: they are `guarded_logger_t`. Any
/// thread.
spdlog::logger& module_logger(std::string_view name, std::string_view default_level = "info");

}  // namespace zyl
