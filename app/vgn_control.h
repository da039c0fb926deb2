#pragma once

#include <QByteArray>
#include <QObject>
#include <QString>
#include <QThread>
#include <QTimer>
#include <functional>
#include <map>
#include <memory>

#include "app/factory_reset_controller.h"
#include "app/keys_handler.h"
#include "app/led.h"
#include "app/runtime_engine_monitor.h"
#include "app/streamer_controller.h"
#include "app/vgn_ui_controller.h"
#include "zyl/qt/property_monitor.h"

namespace vgn_control {

/// The coordinator: owns the device-control objects and their threads, and turns keys and property values into what the
/// device does. Main thread, with an event loop; one a process.
///
/// With VGN_CONTROL_BLOCK set to "1" it is blocked for life: no thread is started, design and engine are not followed.
/// LED, id mode, keys and factory reset work all the same.
class VgnControl : public QObject {
  Q_OBJECT

 public:
  /// Starts everything. `input`: path of the key input device; the LED is that of the platform's model.
  VgnControl(const QString& input, QObject* parent);

  /// Ends the threads and waits for them.
  ~VgnControl() override;

 Q_SIGNALS:
  /// The design's status, or "Stopped" when the runtime engine stops.
  void designStatusChanged(const QByteArray& value);
  /// The value of "/vgn_control/receiving_valid_format".
  void validFormatChanged(const QByteArray& value);

 public Q_SLOTS:
  /// Reacts to a property; paths without a reaction are ignored.
  void propertyMonitorValueChanged(const QByteArray& name, const QByteArray& value);
  /// A press toggles id mode, as last told by the bus; a release does nothing.
  void idKeyPressed(bool pressed);
  /// A press begins the hold after which the device is reset, a release ends it.
  void factoryResetKeyPressed(bool pressed);
  /// Writes a property, provided that it is one of those watched.
  void setProperty(const QByteArray& name, const QByteArray& value);
  /// The runtime engine runs, or does not. Bears repeats.
  void runtimeEngineStatusChanged(bool status);
  /// An output has a new mode, or "disconnected": publishes its size. Index 0 is the first output, any other the
  /// second.
  void hdmiPropertiesChanged(quint32 hdmi_index, const QString& properties);

 private:
  using Reaction = std::function<void(const QByteArray& value)>;

  std::map<QByteArray, Reaction> makeReactions();
  void watchProperties();
  void connectMembers();
  void connectFactoryReset();
  void startThreads();
  void idModeUpdated(const QByteArray& value);
  void designStatusUpdated(const QByteArray& value);
  void engineStateUpdated(const QByteArray& value);
  void requestIdMode(bool state);

  std::unique_ptr<LED> led;
  PropertyMonitor property_monitor;
  RuntimeEngineMonitor runtime_engine_monitor;
  KeysHandler keys_handler;
  FactoryResetController factory_reset;
  VgnUiController ui_controller;
  StreamerController streamer_controller;
  QTimer id_mode_timer;
  QThread streamer_thread;
  QThread monitor_thread;
  bool design_ok = false;
  bool control_blocked = false;
  const std::map<QByteArray, Reaction> reactions;
};

}  // namespace vgn_control
