#include "app/runtime_engine_monitor.h"

#include <QThread>
#include <utility>

#include "app/process_scan.h"

namespace vgn_control {

RuntimeEngineMonitor::RuntimeEngineMonitor(QString wanted_process, uint64_t period_ms)
    : process_name(std::move(wanted_process)), poll_period_ms(period_ms) {}

void RuntimeEngineMonitor::check() {
  const bool found = !processesNamed(process_name.toLocal8Bit()).isEmpty();
  if (found != running) {
    running = found;
    Q_EMIT statusChanged(found);
  }
}

void RuntimeEngineMonitor::start() {
  while (!stop_requested) {
    check();
    QThread::msleep(poll_period_ms);
  }
  Q_EMIT finished();
}

void RuntimeEngineMonitor::stop() { stop_requested = true; }

}  // namespace vgn_control
