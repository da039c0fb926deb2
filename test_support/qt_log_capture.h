#pragma once

#include <QString>
#include <QtGlobal>
#include <functional>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace test_support {

/// Hears what Qt's message handler is given, on any thread, for as long as this object lives. One at a time.
class qt_log_capture_t {
 public:
  struct line_t {
    QtMsgType type;
    std::string text;
    std::string category;
  };

  /// `on_line` is called with each line, on the thread that says it. It must neither log through Qt nor ask this
  /// object.
  explicit qt_log_capture_t(std::function<void(const line_t&)> on_line = [](const line_t&) {})
      : listener(std::move(on_line)) {
    const std::lock_guard lock(mutex);
    present = this;
    previous = qInstallMessageHandler(handle);
  }

  ~qt_log_capture_t() {
    qInstallMessageHandler(previous);
    const std::lock_guard lock(mutex);
    present = nullptr;
  }

  qt_log_capture_t(const qt_log_capture_t&) = delete;
  qt_log_capture_t& operator=(const qt_log_capture_t&) = delete;

  /// The texts of one type that were said so far, in order.
  std::vector<std::string> lines(QtMsgType type) const {
    const std::lock_guard lock(mutex);
    std::vector<std::string> texts;
    for (const auto& line : heard) {
      if (line.type == type) {
        texts.push_back(line.text);
      }
    }
    return texts;
  }

  /// The texts that were said so far in one category, in order.
  std::vector<std::string> lines_in(const std::string& category) const {
    const std::lock_guard lock(mutex);
    std::vector<std::string> texts;
    for (const auto& line : heard) {
      if (line.category == category) {
        texts.push_back(line.text);
      }
    }
    return texts;
  }

  /// The categories of all that was said so far.
  std::set<std::string> categories() const {
    const std::lock_guard lock(mutex);
    std::set<std::string> categories;
    for (const auto& line : heard) {
      categories.insert(line.category);
    }
    return categories;
  }

 private:
  static void handle(QtMsgType type, const QMessageLogContext& context, const QString& text) {
    const line_t line{type, text.toStdString(), context.category};
    // A thread that is about to speak when the handler is taken out may speak after.
    const std::lock_guard lock(mutex);
    if (present != nullptr) {
      present->heard.push_back(line);
      present->listener(line);
    }
  }

  static inline std::mutex mutex;
  static inline qt_log_capture_t* present = nullptr;

  std::function<void(const line_t&)> listener;
  std::vector<line_t> heard;
  QtMessageHandler previous = nullptr;
};

}  // namespace test_support
