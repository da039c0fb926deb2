#include "app/factory_reset_controller.h"

#include <QStringList>
#include <utility>

#include "app/logging.h"

namespace vgn_control {
namespace {

const QString script = QStringLiteral("/usr/zyl/www/cgi-bin/factory_reset_script");
const QString script_argument = QStringLiteral("--level=1");

constexpr int hold_ms = 5000;

}  // namespace

FactoryResetController::FactoryResetController(QObject* parent) : QObject(parent) { connectProcess(); }

// The process ends a running script only after this, when there is nobody left to tell of it.
FactoryResetController::~FactoryResetController() { process.disconnect(this); }

void FactoryResetController::connectProcess() {
  connect(&process, &QProcess::started, this, [this] {
    qCDebug(controlLog) << "Factory reset process started";
    Q_EMIT resetStarted();
  });
  connect(&process, QOverload<int, QProcess::ExitStatus>::of(&QProcess::finished), this, [this](int exit_code) {
    qCDebug(controlLog) << "Factory reset process finished: " << exit_code;
    Q_EMIT resetCompleted(exit_code);
  });
  connect(&process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
    qCCritical(controlLog) << "Factory reset failed" << static_cast<int>(error);
    Q_EMIT resetFailed(error);
  });
}

void FactoryResetController::start() {
  stopTimer();
  timer_id = startTimer(hold_ms, Qt::CoarseTimer);
  qCDebug(controlLog) << "Factory reset process was initiated";
  Q_EMIT resetInitiated();
}

void FactoryResetController::cancel() {
  stopTimer();
  qCDebug(controlLog) << "Factory reset process was cancelled";
  Q_EMIT resetCancelled();
}

void FactoryResetController::timerEvent(QTimerEvent* /*event*/) {
  qCDebug(controlLog) << "Starting script: " << script;
  process.start(script, {script_argument}, QIODevice::ReadWrite);
  stopTimer();
}

void FactoryResetController::stopTimer() {
  if (timer_id != 0) {
    killTimer(std::exchange(timer_id, 0));
  }
}

}  // namespace vgn_control
