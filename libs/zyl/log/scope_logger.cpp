#include "zyl/log/scope_logger.h"

#include <unistd.h>

#include <sstream>
#include <utility>

namespace zyl {
namespace {

std::string head(const char* blanks) { return blanks + ("[" + std::to_string(thread_id()) + "]: "); }

std::string box_line(const char* left, const std::string& text, const char* right) {
  return head("   ") + left + text + right;
}

}  // namespace

pid_t thread_id() {
  thread_local const pid_t id = gettid();
  return id;
}

scope_logger::scope_logger(std::string scope_name, spdlog::level::level_enum scope_level, spdlog::logger& scope_log)
    : log_base_s(scope_log, scope_level), name(std::move(scope_name)) {
  if (enabled()) {
    write_line(box_line("╔═══", name, "═══╗"));
  }
}

scope_logger::~scope_logger() {
  if (enabled()) {
    write_streamed_text();
    write_line(box_line("╚═══", name, "═══╝"));
    close();
  }
}

void scope_logger::on_flush() { write_streamed_text(); }

void scope_logger::write_streamed_text() {
  std::istringstream lines(take_text());
  for (std::string line; std::getline(lines, line);) {
    write_line(head("    ") + line);
  }
}

}  // namespace zyl
