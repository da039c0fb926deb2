#include "zyl/qt/interface_monitor.h"

#include <QNetworkInterface>
#include <array>
#include <cstring>

#include "zyl/qt/property_monitor.h"

namespace {

constexpr char pathPrefix[] = "/sys/lan_daemon/";
constexpr int prefixLength = sizeof pathPrefix - 1;

constexpr std::array<const char*, InterfaceMonitor::interfaceCount> interfaceNames = {"lan_a_0", "lan_a_1", "lan_b_0",
                                                                                      "lan_b_1", "aux_a",   "aux_b"};
constexpr std::array leafNames = {"ip", "link", "netmask", "dflt_route"};

QByteArray pathOf(int interface, const char* leaf) {
  return QByteArray(pathPrefix) + interfaceNames.at(static_cast<std::size_t>(interface)) + '/' + leaf;
}

QList<QByteArray> allPaths() {
  QList<QByteArray> paths;
  for (int interface = 0; interface < InterfaceMonitor::interfaceCount; ++interface) {
    for (const char* leaf : leafNames) {
      paths.append(pathOf(interface, leaf));
    }
  }
  return paths;
}

}  // namespace

InterfaceMonitor::InterfaceMonitor(QObject* parent)
    : QObject(parent), monitor(std::make_unique<PropertyMonitor>(allPaths())) {
  for (int interface = 0; interface < interfaceCount; ++interface) {
    states.insert(interface, InterfaceState());
  }
  connect(monitor.get(), SIGNAL(valueChanged(const QByteArray&, const QByteArray&)),
          SLOT(propertyChanged(const QByteArray&, const QByteArray&)));
}

InterfaceMonitor::~InterfaceMonitor() = default;

QString InterfaceMonitor::ip(int interface) const { return states.value(interface).ip; }

QString InterfaceMonitor::netmask(int interface) const { return states.value(interface).netmask; }

QString InterfaceMonitor::gateway(int interface) const { return states.value(interface).gateway; }

bool InterfaceMonitor::link(int interface) const { return states.value(interface).link; }

QString InterfaceMonitor::mac(int interface) const {
  if (states.contains(interface)) {
    const auto found = QNetworkInterface::interfaceFromName(interfaceNames.at(static_cast<std::size_t>(interface)));
    if (found.isValid()) {
      return found.hardwareAddress();
    }
  }
  return "<unknown>";
}

int InterfaceMonitor::interfaceOf(const QByteArray& path) {
  const QByteArray rest = path.mid(prefixLength);
  int interface = 0;
  while (interface < interfaceCount && !rest.startsWith(interfaceNames.at(static_cast<std::size_t>(interface)))) {
    ++interface;
  }
  return interface;
}

void InterfaceMonitor::propertyChanged(const QByteArray& name, const QByteArray& /*value*/) {
  const int interface = interfaceOf(name);
  if (states.contains(interface)) {
    states[interface] = read(interface);
    Q_EMIT changed(interface);
  }
}

InterfaceMonitor::InterfaceState InterfaceMonitor::read(int interface) const {
  const auto text = [&](const char* leaf) { return monitor->value(pathOf(interface, leaf)); };
  return {text("ip"), text("netmask"), text("dflt_route"), text("link") == "UP"};
}
