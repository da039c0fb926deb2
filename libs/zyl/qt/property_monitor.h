#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>
#include <QObject>
#include <QSocketNotifier>
#include <memory>
#include <string>

#include "zyl/property_client.h"

/// A cache of chosen properties of the bus, on a connection of its own. Needs an event loop; its thread only.
///
/// Without a service, or when the service goes away, nothing is reported: the cache keeps what it last heard, and there
/// is no reconnection.
class PropertyMonitor : public QObject {
  Q_OBJECT

 public:
  /// Connects, and watches `paths`.
  explicit PropertyMonitor(const QList<QByteArray>& paths, QObject* parent = nullptr);

  /// Watches each of `paths` as well and asks for its value, whose arrival is told like a change. The cached value of a
  /// path that is watched already becomes empty until then.
  void addProperties(const QList<QByteArray>& paths);

  /// The last value heard; empty before the first and for a path that is not watched.
  QByteArray value(const QByteArray& path) const;

  /// Writes a watched property; nothing happens for other paths. Path and value end at their first NUL. The cache
  /// follows when the service tells the change.
  void setValue(const QByteArray& path, const QByteArray& value);

 Q_SIGNALS:
  /// A watched property was told by the service, with a new value or with the same. Texts end at their first NUL. A
  /// slot must not destroy the monitor; `deleteLater` may be called.
  void valueChanged(const QByteArray& name, const QByteArray& value);

 private:
  Q_SLOT void readReady(int descriptor);
  void take(const std::string& command, const QByteArray& path, const QByteArray& value);

  struct Message {
    std::string command;
    std::string path;
    std::string value;
  };

  zyl::property_client_t client;
  /// The message that is being read, for its memory.
  Message received;
  QMap<QByteArray, QByteArray> values;
  std::unique_ptr<QSocketNotifier> notifier;
};
