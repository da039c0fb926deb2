#pragma once

#include <QByteArray>
#include <QHash>
#include <QObject>
#include <QString>
#include <memory>

class PropertyMonitor;

/// What the properties below "/sys/lan_daemon/" tell of the appliance's network interfaces, on a connection of its own.
/// Needs an event loop; its thread only.
///
/// Interfaces go by number: 0 "lan_a_0", 1 "lan_a_1", 2 "lan_b_0", 3 "lan_b_1", 4 "aux_a", 5 "aux_b". Of any other
/// number the texts are empty and the link is down.
class InterfaceMonitor : public QObject {
  Q_OBJECT

 public:
  static constexpr int interfaceCount = 6;

  explicit InterfaceMonitor(QObject* parent = nullptr);
  ~InterfaceMonitor() override;

  /// Addresses as the service writes them; empty before it told them.
  QString ip(int interface) const;
  QString netmask(int interface) const;
  /// The default route's next hop.
  QString gateway(int interface) const;

  /// Whether the property "link" is exactly "UP".
  bool link(int interface) const;

  /// The hardware address, upper case with colons, asked of the machine at each call. "<unknown>" for a number outside
  /// the table and for an interface that the machine does not have.
  QString mac(int interface) const;

  /// The number of the interface that a property path below "/sys/lan_daemon/" belongs to: the first whose name begins
  /// what follows; `interfaceCount` if none does.
  static int interfaceOf(const QByteArray& path);

 Q_SIGNALS:
  /// The service told a property of the interface, a new value or the same. A slot must not destroy the monitor;
  /// `deleteLater` may be called.
  void changed(int interface);

 private:
  struct InterfaceState {
    QString ip;
    QString netmask;
    QString gateway;
    bool link = false;
  };

  Q_SLOT void propertyChanged(const QByteArray& name, const QByteArray& value);
  InterfaceState read(int interface) const;

  std::unique_ptr<PropertyMonitor> monitor;
  QHash<int, InterfaceState> states;
};
