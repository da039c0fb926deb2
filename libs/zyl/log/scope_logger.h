#pragma once

#include <spdlog/spdlog.h>
#include <sys/types.h>

#include <string>

#include "zyl/log/log_base.h"

namespace zyl {

/// The kernel's id of the calling thread, asked for once a thread. A forked child keeps its parent's.
pid_t thread_id();

/// Traces a scope: draws its beginning and its end as boxes and puts the thread's id before every line. With TID for
/// the id, `scope_logger scope("discovery", spdlog::level::debug); scope << "two resources" << std::flush;` writes
///
///        [TID]: ╔═══discovery═══╗
///         [TID]: two resources
///        [TID]: ╚═══discovery═══╝
///
/// three blanks before the brackets of a box, four before those of text. Streamed text goes out on `flush()`,
/// `std::flush` or `std::endl`, at the scope's level, one log line for each of its lines; the destructor writes what
/// has not been flushed. A scope whose level is disabled when it begins writes nothing, and no exception leaves it: a
/// line that there is no memory for is missing. One thread.
class scope_logger : public log_base_s {
 public:
  /// `name` is the text in the boxes. `logger` must outlive the scope.
  scope_logger(std::string name, spdlog::level::level_enum level,
               spdlog::logger& logger = *spdlog::default_logger_raw());
  ~scope_logger() override;

  scope_logger(const scope_logger&) = delete;
  scope_logger& operator=(const scope_logger&) = delete;
  scope_logger(scope_logger&&) = delete;
  scope_logger& operator=(scope_logger&&) = delete;

 protected:
  void on_flush() override;

 private:
  void write_box(const char* left_end, const char* right_end) noexcept;
  void write_streamed_text() noexcept;

  std::string name;
};

}  // namespace zyl
