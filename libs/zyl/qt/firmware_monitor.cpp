#include "zyl/qt/firmware_monitor.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "zyl/qt/property_monitor.h"

namespace {

const char* const statePath = "/sys/fw_status/state";
const char* const progressPath = "/sys/fw_status/progress";

/// In the order of the enumeration.
constexpr std::array stateTexts = {"idle", "initializing", "fw_write", "fpga_write", "complete", "error"};

}  // namespace

FirmwareMonitor::FirmwareMonitor(QObject* parent)
    : QObject(parent), monitor(std::make_unique<PropertyMonitor>(QList<QByteArray>{statePath, progressPath})) {
  connect(monitor.get(), SIGNAL(valueChanged(const QByteArray&, const QByteArray&)),
          SLOT(propertyChanged(const QByteArray&, const QByteArray&)));
}

FirmwareMonitor::~FirmwareMonitor() = default;

FirmwareMonitor::State FirmwareMonitor::state() const {
  const auto text = std::find(stateTexts.begin(), stateTexts.end(), monitor->value(statePath));
  return text == stateTexts.end() ? Idle : static_cast<State>(std::distance(stateTexts.begin(), text));
}

int FirmwareMonitor::progress() const { return monitor->value(progressPath).toInt(nullptr, 10); }

void FirmwareMonitor::propertyChanged(const QByteArray& /*name*/, const QByteArray& /*value*/) { Q_EMIT changed(); }
