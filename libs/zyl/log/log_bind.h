// Binds the five log temporaries to a source file's module logger. Include it after
//
//   static auto& module_log = zyl::module_logger("...");
//
// and write: log_info_s() << "opened " << path;
//
// Included once per source file: each has its own five, bound to its own logger.
#pragma once

#include "zyl/log/log_base.h"
#include "zyl/log/module_logger.h"

namespace {

/// A log line at a level, on the logger of this source file.
template <spdlog::level::level_enum bound_level>
class bound_log_s : public zyl::log_base_s {
 public:
  bound_log_s() : zyl::log_base_s(module_log, bound_level) {}
};

using log_error_s [[maybe_unused]] = bound_log_s<spdlog::level::err>;
using log_warn_s [[maybe_unused]] = bound_log_s<spdlog::level::warn>;
using log_info_s [[maybe_unused]] = bound_log_s<spdlog::level::info>;
using log_debug_s [[maybe_unused]] = bound_log_s<spdlog::level::debug>;
using log_trace_s [[maybe_unused]] = bound_log_s<spdlog::level::trace>;

}  // namespace
