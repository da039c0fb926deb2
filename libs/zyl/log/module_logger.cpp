#include "zyl/log/module_logger.h"

#include <spdlog/sinks/stdout_color_sinks.h>
#include <spdlog/spdlog.h>

#include <memory>
#include <mutex>
#include <string>

namespace zyl {
namespace {

constexpr const char* logger_pattern = "%+";

void install_default_logger() {
  auto logger = std::make_shared<spdlog::logger>("default", std::make_shared<spdlog::sinks::stdout_color_sink_mt>());
  logger->set_level(spdlog::level::info);
  spdlog::set_default_logger(std::move(logger));
}

std::shared_ptr<spdlog::logger> make_logger(const std::string& name) {
  const auto& sinks = spdlog::default_logger_raw()->sinks();
  auto logger = std::make_shared<spdlog::logger>(name, sinks.begin(), sinks.end());
  logger->set_pattern(logger_pattern);
  logger->set_level(spdlog::level::info);
  spdlog::register_logger(logger);
  return logger;
}

}  // namespace

spdlog::logger& module_logger(std::string_view name) {
  static std::once_flag default_logger_installed;
  std::call_once(default_logger_installed, install_default_logger);

  // Two threads may ask for the same new name; the registry would throw at the second registration.
  static std::mutex creation;
  const std::lock_guard lock(creation);
  const std::string key(name);
  auto logger = spdlog::get(key);
  return logger ? *logger : *make_logger(key);
}

}  // namespace zyl
