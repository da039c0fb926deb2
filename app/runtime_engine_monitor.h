#pragma once

#include <QObject>
#include <QString>
#include <atomic>
#include <cstdint>

namespace vgn_control {

/// Watches "/proc" for the process that executes the customer's design. Has no parent, so that it can move to a thread
/// of its own, where `start` stays until `stop`.
class RuntimeEngineMonitor : public QObject {
  Q_OBJECT

 public:
  /// `wanted_process`: the `comm` to look for, 15 characters at most. `period_ms`: pause behind each look.
  RuntimeEngineMonitor(QString wanted_process, uint64_t period_ms);

  /// Whether the process was there at the last look. Any thread.
  bool isRunning() const { return running; }

  /// Looks once, and tells when the process has come or gone since the last look. One thread at a time: that of `start`
  /// while that runs.
  void check();

 Q_SIGNALS:
  /// The process has come or gone; `isRunning` says the same already. Emitted on the thread that looks.
  void statusChanged(bool status);
  /// `start` is about to return. Emitted on its thread.
  void finished();

 public Q_SLOTS:
  /// Looks again and again until `stop`, then emits `finished`. Holds its thread meanwhile.
  void start();

  /// Ends `start` after its present pause. Call it directly: the thread that `start` holds delivers no queued call.
  void stop();

 private:
  QString process_name;
  std::atomic<bool> stop_requested = false;
  uint64_t poll_period_ms;
  std::atomic<bool> running = false;
};

}  // namespace vgn_control
