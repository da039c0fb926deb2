#pragma once

#include <QObject>
#include <QProcess>
#include <cstdint>

namespace vgn_control {

/// The hold of the reset key, five seconds long, and the factory reset script that runs at its end. Main thread, with
/// an event loop.
///
/// Whoever starts, cancels and starts again while the script runs is served: only the hold is cancelled, never the
/// script, and a script that still runs at the end of another hold is not started twice, of which Qt warns.
///
/// The script's standard input is a pipe that stays open and empty; what it writes is collected and read by nobody.
class FactoryResetController : public QObject {
  Q_OBJECT

 public:
  explicit FactoryResetController(QObject* parent = nullptr);

  /// Kills a script that still runs, waits up to 30 seconds for its end, and tells nobody.
  ~FactoryResetController() override;

 Q_SIGNALS:
  /// A hold begins, or begins anew.
  void resetInitiated();
  /// The script runs.
  void resetStarted();
  /// The script has ended: its exit status, or the number of the signal that killed it.
  void resetCompleted(int exitCode);
  /// The script could not be started, was killed, or could not be read from or written to. `resetCompleted` follows
  /// unless it never ran.
  void resetFailed(QProcess::ProcessError error);
  /// The hold is over. Also told when there was none, so after the script has started.
  void resetCancelled();

 public Q_SLOTS:
  /// Begins to time the hold, from zero.
  void start();

  /// Ends the hold, if there is one. The script goes on.
  void cancel();

 protected:
  /// The hold has lasted long enough: starts the script.
  void timerEvent(QTimerEvent* event) override;

 private:
  void connectProcess();
  void stopTimer();

  QProcess process;
  /// 0 while no hold is timed.
  int32_t timer_id = 0;
};

}  // namespace vgn_control
