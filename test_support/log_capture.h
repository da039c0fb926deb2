#pragma once

#include <spdlog/sinks/base_sink.h>
#include <spdlog/spdlog.h>

#include <algorithm>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "zyl/log/module_logger.h"

namespace test_support {

/// Hears what a module logger says, for as long as this object lives, at level info and above or as told. What was
/// heard may be asked for on any thread. The list of a logger's sinks has no lock: make this object before the threads
/// that log there, and destroy it after they have ended.
class log_capture_t {
 public:
  struct line_t {
    spdlog::level::level_enum level;
    std::string text;
  };

  explicit log_capture_t(std::string_view logger_name, spdlog::level::level_enum level = spdlog::level::info)
      : logger(logger_called(logger_name)), sink(std::make_shared<sink_t>()), previous_level(logger.level()) {
    logger.sinks().push_back(sink);
    logger.set_level(level);
  }

  ~log_capture_t() {
    std::erase(logger.sinks(), sink);
    logger.set_level(previous_level);
  }

  log_capture_t(const log_capture_t&) = delete;
  log_capture_t& operator=(const log_capture_t&) = delete;
  log_capture_t(log_capture_t&&) = delete;
  log_capture_t& operator=(log_capture_t&&) = delete;

  /// What was said so far, in order.
  std::vector<line_t> entries() const { return sink->copy(); }

  /// The texts alone.
  std::vector<std::string> lines() const {
    std::vector<std::string> texts;
    for (const auto& entry : entries()) {
      texts.push_back(entry.text);
    }
    return texts;
  }

  /// Whether a line is exactly `text`.
  bool said(std::string_view text) const {
    const auto texts = lines();
    return std::find(texts.begin(), texts.end(), text) != texts.end();
  }

  void clear() { sink->clear(); }

 private:
  class sink_t : public spdlog::sinks::base_sink<std::mutex> {
   public:
    std::vector<line_t> copy() {
      const std::lock_guard lock(mutex_);
      return heard;
    }

    void clear() {
      const std::lock_guard lock(mutex_);
      heard.clear();
    }

   protected:
    void sink_it_(const spdlog::details::log_msg& message) override {
      heard.push_back({message.level, std::string(message.payload.data(), message.payload.size())});
    }
    void flush_() override {}

   private:
    std::vector<line_t> heard;
  };

  // Asking for a module's logger would give it its default level.
  static spdlog::logger& logger_called(std::string_view name) {
    const auto known = spdlog::get(std::string(name));
    return known ? *known : zyl::module_logger(name);
  }

  spdlog::logger& logger;
  std::shared_ptr<sink_t> sink;
  spdlog::level::level_enum previous_level;
};

}  // namespace test_support
