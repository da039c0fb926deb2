#pragma once

#include <spdlog/logger.h>

#include <memory>
#include <string>

namespace zyl {

/// A logger whose sinks may throw whatever they like: no exception of theirs leaves a logging call, nor one of the
/// error handler. spdlog's own logger rethrows what is no `std::exception`.
///
/// The error handler hears of each failure once: the text of a `std::exception`, "Unknown exeption in logger" for
/// anything else. The sinks behind the one that failed still get the record. Any thread, as spdlog's.
class guarded_logger_t : public spdlog::logger {
 public:
  using spdlog::logger::logger;

  /// A logger of the same kind, with the sinks and settings of this one.
  std::shared_ptr<spdlog::logger> clone(std::string logger_name) override;

 protected:
  void sink_it_(const spdlog::details::log_msg& message) override;
  void flush_() override;

 private:
  template <typename Work>
  void guard(const Work& work) noexcept;
  void report(const char* text) noexcept;
};

}  // namespace zyl
