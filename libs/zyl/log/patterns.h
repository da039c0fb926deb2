#pragma once

/// The layouts of log lines, in spdlog's pattern language.
namespace zyl::log_patterns {

/// spdlog's own: time, logger, level, text. What every logger starts with.
inline constexpr const char* full = "%+";
/// Of the log file.
inline constexpr const char* file = "[%m/%d/%Y %H:%M:%S] [%n] [%l] %v";
/// Date, time and text alone: for a sink that is a scope's own, whose lines carry their own head, and what
/// `generic_sink` starts with. A layout belongs to a sink: a scope that writes to a module's logger has the layout of
/// that logger's.
inline constexpr const char* message = "[%x %X]: %v";

}  // namespace zyl::log_patterns
