#pragma once

#include <spdlog/common.h>
#include <spdlog/logger.h>

#include <ostream>
#include <sstream>

namespace zyl {

/// A log line in the making: a temporary that is streamed into and hands its text to the logger when it dies.
///
/// Text is never taken for a format string. With the level disabled nothing is formatted. No exception leaves the
/// destructor: it goes to the logger's error handler, a foreign one as "Unknown exeption in logger". One thread.
class log_base_s : public std::ostream {
 public:
  log_base_s(spdlog::logger& logger, spdlog::level::level_enum level);
  ~log_base_s() override;

  log_base_s(const log_base_s&) = delete;
  log_base_s& operator=(const log_base_s&) = delete;
  log_base_s(log_base_s&&) = delete;
  log_base_s& operator=(log_base_s&&) = delete;

 private:
  spdlog::logger& logger;
  spdlog::level::level_enum level;
  std::stringbuf text;
};

}  // namespace zyl
