#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QEventLoop>
#include <functional>

namespace test_support {

/// Turns Qt's loop of the calling thread until the condition holds. False if it still does not after 20 seconds, which
/// only a fault takes.
inline bool qt_loop_until(const std::function<bool()>& condition) {
  const QDeadlineTimer deadline(20'000);
  while (!condition()) {
    if (deadline.hasExpired()) {
      return false;
    }
    QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
  }
  return true;
}

}  // namespace test_support
