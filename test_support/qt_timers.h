#pragma once

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QObject>
#include <QTimerEvent>
#include <vector>

namespace test_support {

/// The intervals, in milliseconds, of the timers that an object has running in the calling thread.
inline std::vector<int> timer_intervals_of(QObject& object) {
  std::vector<int> intervals;
  for (const auto& timer : QAbstractEventDispatcher::instance()->registeredTimers(&object)) {
    intervals.push_back(timer.interval);
  }
  return intervals;
}

/// Tells an object that each of its timers has timed out, without waiting for that.
inline void expire_timers_of(QObject& object) {
  for (const auto& timer : QAbstractEventDispatcher::instance()->registeredTimers(&object)) {
    QTimerEvent event(timer.timerId);
    QCoreApplication::sendEvent(&object, &event);
  }
}

}  // namespace test_support
