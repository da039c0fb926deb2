#pragma once

/// The layouts of log lines, in spdlog's pattern language.
namespace zyl::log_patterns {

/// spdlog's own: time, logger, level, text. What every logger starts with.
inline constexpr const char* full = "%+";
/// Of the log file.
inline constexpr const char* file = "[%m/%d/%Y %H:%M:%S] [%n] [%l] %v";
/// Date, time and text alone: for scopes, whose lines carry their own head.
inline constexpr const char* message = "[%x %X]: %v";

}  // namespace zyl::log_patterns
