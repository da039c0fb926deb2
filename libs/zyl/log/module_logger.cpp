#include "zyl/log/module_logger.h"

#include <spdlog/sinks/stdout_color_sinks.h>
#include <spdlog/spdlog.h>

#include <list>
#include <memory>
#include <mutex>
#include <string>

#include "zyl/log/default_level.h"
#include "zyl/log/guarded_logger.h"
#include "zyl/log/patterns.h"

namespace zyl {
namespace {

// A crash runs the exit handlers while other threads go on and log. The registry ends there; the loggers must not.
void keep_for_ever(const std::shared_ptr<spdlog::logger>& logger) {
  using loggers_t = std::list<std::shared_ptr<spdlog::logger>>;
  static loggers_t* const kept = std::make_unique<loggers_t>().release();
  kept->push_back(logger);
}

void install_default_logger() {
  auto logger = std::make_shared<guarded_logger_t>("default", std::make_shared<spdlog::sinks::stdout_color_sink_mt>());
  logger->set_pattern(log_patterns::full);
  logger->set_level(spdlog::level::info);
  keep_for_ever(logger);
  spdlog::set_default_logger(std::move(logger));
}

// The sinks bring their pattern along: setting it here would change it for all who share them, the log file's too.
std::shared_ptr<spdlog::logger> make_logger(const std::string& name) {
  const auto& sinks = spdlog::default_logger_raw()->sinks();
  auto logger = std::make_shared<guarded_logger_t>(name, sinks.begin(), sinks.end());
  logger->set_level(spdlog::level::info);
  spdlog::register_logger(logger);
  keep_for_ever(logger);
  return logger;
}

}  // namespace

spdlog::logger& module_logger(std::string_view name, std::string_view default_level) {
  static std::once_flag default_logger_installed;
  std::call_once(default_logger_installed, install_default_logger);

  // Two threads may ask for the same new name; the registry would throw at the second registration.
  static std::mutex creation;
  const std::lock_guard lock(creation);
  const std::string key(name);
  auto logger = spdlog::get(key);
  if (!logger) {
    logger = make_logger(key);
  }
  if (const auto level = default_level_of(default_level)) {
    logger->set_level(*level);
  }
  return *logger;
}

}  // namespace zyl
