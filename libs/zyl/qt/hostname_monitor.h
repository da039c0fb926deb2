#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <memory>

class PropertyMonitor;

/// The appliance's host name, from the property "/sys/lan_daemon/hostname", on a connection of its own. Needs an event
/// loop; its thread only.
class HostnameMonitor : public QObject {
  Q_OBJECT

 public:
  explicit HostnameMonitor(QObject* parent = nullptr);
  ~HostnameMonitor() override;

  /// The last name heard; empty before the first.
  QString hostname() const;

 Q_SIGNALS:
  /// The service told the name, a new one or the same. A slot must not destroy the monitor; `deleteLater` may be
  /// called.
  void changed(QString value);

 private:
  Q_SLOT void propertyChanged(const QByteArray& name, const QByteArray& value);

  std::unique_ptr<PropertyMonitor> monitor;
};
