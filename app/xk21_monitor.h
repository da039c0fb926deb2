#pragma once

#include <QByteArray>
#include <QObject>

namespace vgn_control {

/// Puts the KTM5030 back to mode 0 when the design stops, on the one model that has it. Main thread.
class XK21Monitor : public QObject {
  Q_OBJECT

 public:
  explicit XK21Monitor(QObject* parent = nullptr) : QObject(parent) {}

 public Q_SLOTS:
  /// `value`: the design's status; every one but "Stopped" is ignored.
  void designStatusChanged(const QByteArray& value);
};

}  // namespace vgn_control
