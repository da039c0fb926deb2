#include "zyl/log/setup_logging.h"

#include <spdlog/cfg/argv.h>
#include <spdlog/cfg/env.h>
#include <spdlog/sinks/rotating_file_sink.h>
#include <spdlog/sinks/stdout_color_sinks.h>
#include <spdlog/sinks/syslog_sink.h>
#include <spdlog/spdlog.h>
#include <syslog.h>

#include <memory>
#include <mutex>

#include "zyl/log/level_file.h"
#include "zyl/log/module_logger.h"
#include "zyl/log/patterns.h"

namespace zyl {
namespace {

constexpr std::size_t file_size_limit = 3145728;
constexpr std::size_t rotated_files = 1;

std::string& stored_program_name() {
  static std::string name;
  return name;
}

std::string base_name(const std::string& path) { return path.substr(path.rfind('/') + 1); }

spdlog::sink_ptr make_sink(const std::string& sink_name) {
  if (sink_name.empty()) {
    return std::make_shared<spdlog::sinks::syslog_sink<std::mutex>>(program_name(), LOG_CONS | LOG_ODELAY, LOG_USER,
                                                                    false);
  }
  if (sink_name == "stdout_color_sink_mt") {
    return std::make_shared<spdlog::sinks::stdout_color_sink_mt>();
  }
  if (sink_name == "stdout_color_sink_st") {
    return std::make_shared<spdlog::sinks::stdout_color_sink_st>();
  }
  auto sink = std::make_shared<spdlog::sinks::rotating_file_sink_mt>(sink_name, file_size_limit, rotated_files);
  sink->set_pattern(log_patterns::file);
  return sink;
}

}  // namespace

const std::string& program_name() { return stored_program_name(); }

void setup_logging(const std::string& name, bool load_levels, const std::string& sink_name) {
  stored_program_name() = base_name(name);
  module_logger("default");
  const auto sink = make_sink(sink_name);
  // Module loggers exist since before main, each with the sinks that the default logger had then.
  spdlog::apply_all([&sink](const std::shared_ptr<spdlog::logger>& logger) { logger->sinks() = {sink}; });
  if (load_levels) {
    load_level_file("/var/rwfs2/log_level." + program_name() + ".json", program_name());
  }
}

void setup_logging_with_environment(const std::string& name, bool load_levels, const std::string& sink_name) {
  setup_logging(name, load_levels, sink_name);
  spdlog::cfg::load_env_levels();
}

void setup_logging_with_arguments(const std::string& name, bool load_levels, const std::string& sink_name, int argc,
                                  const char* const* argv) {
  setup_logging(name, load_levels, sink_name);
  spdlog::cfg::load_argv_levels(argc, const_cast<const char**>(argv));
}

}  // namespace zyl
