#pragma once

#include <QObject>

namespace vgn_control {

/// An indicator on the front panel. Main thread.
///
/// Whatever goes wrong with it is told in warnings, never to the caller: an LED that does not work must not stop the
/// device.
class LED : public QObject {
  Q_OBJECT

 public:
  explicit LED(QObject* parent) : QObject(parent) {}

 public Q_SLOTS:
  /// Lets it flash: on and off for `interval` milliseconds each, which is above 0.
  virtual void startFlashing(int interval) = 0;

  /// Ends the flashing; then it shows what it shows at rest.
  virtual void stopFlashing() = 0;
};

}  // namespace vgn_control
