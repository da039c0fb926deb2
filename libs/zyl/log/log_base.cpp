#include "zyl/log/log_base.h"

#include <exception>

namespace zyl {
namespace {

// spdlog keeps a logger's error handler to itself; a logger that is given one of ours reports through it.
void report(spdlog::logger& logger, const char* text) noexcept {
  class reporter_t : public spdlog::logger {
   public:
    explicit reporter_t(const spdlog::logger& other) : spdlog::logger(other) {}
    void report(const std::string& text) { err_handler_(text); }
  };
  try {
    reporter_t(logger).report(text);
  } catch (...) {  // NOLINT(bugprone-empty-catch): there is nowhere left to tell it
  }
}

}  // namespace

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
  } catch (const std::exception& error) {
    report(logger, error.what());
  } catch (...) {
    report(logger, "Unknown exeption in logger");
  }
}

std::string log_base_s::take_text() {
  std::string taken = text.str();
  text.str(std::string());
  return taken;
}

}  // namespace zyl
