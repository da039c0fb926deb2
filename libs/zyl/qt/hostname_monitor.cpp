#include "zyl/qt/hostname_monitor.h"

#include "zyl/qt/property_monitor.h"

namespace {

const char* const hostnamePath = "/sys/lan_daemon/hostname";

}  // namespace

HostnameMonitor::HostnameMonitor(QObject* parent)
    : QObject(parent), monitor(std::make_unique<PropertyMonitor>(QList<QByteArray>{hostnamePath})) {
  connect(monitor.get(), SIGNAL(valueChanged(const QByteArray&, const QByteArray&)),
          SLOT(propertyChanged(const QByteArray&, const QByteArray&)));
}

HostnameMonitor::~HostnameMonitor() = default;

QString HostnameMonitor::hostname() const { return monitor->value(hostnamePath); }

void HostnameMonitor::propertyChanged(const QByteArray& /*name*/, const QByteArray& value) { Q_EMIT changed(value); }
