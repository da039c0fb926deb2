#pragma once

#include <spdlog/logger.h>

#include <string_view>

namespace zyl {

/// Returns the logger called `name`, made on first use with level info on the default logger's sinks.
///
/// Meant for a file-static reference, before `main`: it touches nothing but spdlog's registry. The first call in a
/// process also makes the logger "default" and installs it as spdlog's default logger. Loggers live as long as the
/// registry, that is, the process. Any thread.
spdlog::logger& module_logger(std::string_view name);

}  // namespace zyl
