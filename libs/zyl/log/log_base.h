#pragma once

#include <spdlog/common.h>
#include <spdlog/logger.h>

#include <ostream>
#include <sstream>
#include <string>
#include <string_view>

namespace zyl {

/// A log line in the making: a temporary that is streamed into and hands its text to the logger when it dies.
///
/// Text is never taken for a format string. With the level disabled nothing is formatted. No exception leaves the
/// destructor: the logger tells its error handler, a module logger in the words of `guarded_logger_t`. One thread.
class log_base_s : public std::ostream {
 public:
  log_base_s(spdlog::logger& logger, spdlog::level::level_enum level);
  ~log_base_s() override;

  log_base_s(const log_base_s&) = delete;
  log_base_s& operator=(const log_base_s&) = delete;
  log_base_s(log_base_s&&) = delete;
  log_base_s& operator=(log_base_s&&) = delete;

 protected:
  /// Whether the level was enabled at construction, and the object has not been closed since.
  bool enabled() const { return rdbuf() != nullptr; }

  /// Hands one line to the logger, at this object's level. Exceptions end there.
  void write_line(std::string_view line) noexcept;

  /// Takes out what was streamed since the last call.
  std::string take_text();

  /// Ends it: what is streamed from now on is dropped, and the destructor writes nothing.
  void close() { rdbuf(nullptr); }

  /// Called by `flush()`, `std::flush` and `std::endl`. A single line is not written before it is complete: does
  /// nothing.
  virtual void on_flush() {}

 private:
  class text_buffer_t : public std::stringbuf {
   public:
    explicit text_buffer_t(log_base_s& log) : owner(log) {}

   protected:
    int sync() override {
      owner.on_flush();
      return 0;
    }

   private:
    log_base_s& owner;
  };

  spdlog::logger& logger;
  spdlog::level::level_enum level;
  text_buffer_t text;
};

}  // namespace zyl
