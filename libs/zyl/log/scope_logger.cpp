#include "zyl/log/scope_logger.h"

#include <unistd.h>

#include <sstream>
#include <utility>

namespace zyl {
namespace {

std::string head(const char* blanks) { return blanks + ("[" + std::to_string(thread_id()) + "]: "); }

}  // namespace

pid_t thread_id() {
  thread_local const pid_t id = gettid();
  return id;
}

scope_logger::scope_logger(std::string scope_name, spdlog::level::level_enum scope_level, spdlog::logger& scope_log)
    : log_base_s(scope_log, scope_level), name(std::move(scope_name)) {
  if (enabled()) {
    write_box("╔═══", "═══╗");
  }
}

scope_logger::~scope_logger() {
  if (enabled()) {
    write_streamed_text();
    write_box("╚═══", "═══╝");
    close();
  }
}

void scope_logger::on_flush() { write_streamed_text(); }

void scope_logger::write_box(const char* left_end, const char* right_end) noexcept {
  try {
    write_line(head("   ") + left_end + name + right_end);
  } catch (...) {  // NOLINT(bugprone-empty-catch): without memory for a line there is none to tell of it either
  }
}

void scope_logger::write_streamed_text() noexcept {
  try {
    std::istringstream lines(take_text());
    for (std::string line; std::getline(lines, line);) {
      write_line(head("    ") + line);
    }
  } catch (...) {  // NOLINT(bugprone-empty-catch): as above
  }
}

}  // namespace zyl
