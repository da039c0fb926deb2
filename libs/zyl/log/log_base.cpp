#include "zyl/log/log_base.h"

namespace zyl {

log_base_s::log_base_s(spdlog::logger& line_logger, spdlog::level::level_enum line_level)
    : std::ostream(nullptr), logger(line_logger), level(line_level), text(*this) {
  if (logger.should_log(level)) {
    rdbuf(&text);
  }
}

log_base_s::~log_base_s() {
  if (enabled()) {
    write_line(text.view());
  }
}

void log_base_s::write_line(std::string_view line) noexcept {
  try {
    logger.log(level, "{}", line);
  } catch (...) {  // NOLINT(bugprone-empty-catch): the logger has told its error handler
  }
}

std::string log_base_s::take_text() {
  std::string taken = text.str();
  text.str(std::string());
  return taken;
}

}  // namespace zyl
