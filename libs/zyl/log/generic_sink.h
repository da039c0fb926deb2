#pragma once

#include <spdlog/details/os.h>
#include <spdlog/pattern_formatter.h>
#include <spdlog/sinks/base_sink.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "zyl/log/patterns.h"

namespace zyl {

/// A sink for whoever wants log text somewhere else: formats each record by a pattern of spdlog's language and hands
/// the text, without a line end, to a function. `set_pattern` changes the pattern later.
///
///   logger.sinks().push_back(std::make_shared<generic_sink<std::mutex>>(
///       [&](std::string_view text) { window.append(text); }));
///
/// The function is called on the thread that logs, and under the sink's mutex: it must not log to the same sink, and
/// keeps the view no longer than the call. What it throws a module logger tells its error handler; a logger of spdlog's
/// own class lets out of the logging call what is no `std::exception`.
template <typename Mutex>
class generic_sink : public spdlog::sinks::base_sink<Mutex> {
 public:
  using consumer_t = std::function<void(std::string_view)>;

  explicit generic_sink(consumer_t text_consumer, const std::string& pattern = log_patterns::message)
      : spdlog::sinks::base_sink<Mutex>(std::make_unique<spdlog::pattern_formatter>(pattern)),
        consumer(std::move(text_consumer)) {}

 protected:
  void sink_it_(const spdlog::details::log_msg& message) override {
    spdlog::memory_buf_t formatted;
    this->formatter_->format(message, formatted);
    std::string_view text(formatted.data(), formatted.size());
    // spdlog's formatters end every record with one; whoever has lines needs none.
    if (text.ends_with(spdlog::details::os::default_eol)) {
      text.remove_suffix(std::string_view(spdlog::details::os::default_eol).size());
    }
    consumer(text);
  }

  void flush_() override {}

 private:
  consumer_t consumer;
};

}  // namespace zyl
