#include "zyl/log/guarded_logger.h"

#include <spdlog/sinks/sink.h>

#include <exception>
#include <utility>

namespace zyl {

void guarded_logger_t::report(const char* text) noexcept {
  try {
    err_handler_(text);
  } catch (...) {  // NOLINT(bugprone-empty-catch): there is nowhere left to tell it
  }
}

template <typename Work>
void guarded_logger_t::guard(const Work& work) noexcept {
  try {
    work();
  } catch (const std::exception& error) {
    report(error.what());
  } catch (...) {
    report("Unknown exeption in logger");
  }
}

std::shared_ptr<spdlog::logger> guarded_logger_t::clone(std::string logger_name) {
  auto copy = std::make_shared<guarded_logger_t>(*this);
  copy->name_ = std::move(logger_name);
  return copy;
}

void guarded_logger_t::sink_it_(const spdlog::details::log_msg& message) {
  for (const auto& sink : sinks_) {
    if (sink->should_log(message.level)) {
      guard([&] { sink->log(message); });
    }
  }
  if (should_flush_(message)) {
    flush_();
  }
}

void guarded_logger_t::flush_() {
  for (const auto& sink : sinks_) {
    guard([&] { sink->flush(); });
  }
}

}  // namespace zyl
