#include "app/vgn_control.h"

#include <cstdlib>

#include "app/block_check.h"
#include "app/logging.h"
#include "app/model_led.h"
#include "app/published_resolution.h"
#include "zyl/dev_options.h"
#include "zyl/platform.h"

namespace vgn_control {
namespace {

const QByteArray design_status_path = "/tarn/design/status";
const QByteArray dev_options_path = "/tarn/design/dev_options";
const QByteArray engine_state_path = "/sys/runtimeengine/state";
const QByteArray id_mode_path = "/tarn/mode/id";
const QByteArray ui_control_path = "/vgn_ui/vgn_ui_control";
const QByteArray hdmi1_properties_path = "/sys/hdmi1_properties";
const QByteArray hdmi2_properties_path = "/sys/hdmi2_properties";
const QByteArray valid_format_path = "/vgn_control/receiving_valid_format";
const QByteArray hdmi1_screen_path = "/vgn_ui/hdmi1_current_screen";
const QByteArray hdmi2_screen_path = "/vgn_ui/hdmi2_current_screen";

const QByteArray ui_has_screens = "1";
const QByteArray design_has_screens = "0";
const QByteArray id_mode_on = "on";
const QByteArray id_mode_off = "off";

const QString disconnected = QStringLiteral("disconnected");

constexpr uint64_t engine_poll_period_ms = 1000;
constexpr int id_mode_duration_ms = 300'000;
constexpr int id_mode_flash_ms = 500;
constexpr int reset_hold_flash_ms = 100;

const char* textOf(bool state) { return state ? "true" : "false"; }

QString publishedProperties(const QString& properties) {
  if (properties == disconnected) {
    return disconnected;
  }
  const QString resolution = leadingResolution(properties);
  qCInfo(controlLog).noquote() << QStringLiteral("Resolution matched %1").arg(resolution);
  return publishedResolution(resolution);
}

void stopThread(QThread& thread) {
  if (thread.isRunning()) {
    thread.quit();
    thread.wait();
  }
}

}  // namespace

VgnControl::VgnControl(const QString& input, QObject* parent)
    : QObject(parent),
      property_monitor({}, this),
      runtime_engine_monitor(QStringLiteral("runtime_engine"), engine_poll_period_ms),
      keys_handler(input, this),
      factory_reset(this),
      ui_controller(this),
      streamer_controller(this),
      id_mode_timer(this),
      streamer_thread(this),
      monitor_thread(this),
      reactions(makeReactions()) {
  led = makeModelLed(zyl::platform_t::get().part(), *this);
  watchProperties();
  connectMembers();
  control_blocked = isControlBlocked(std::getenv("VGN_CONTROL_BLOCK"));
  if (control_blocked) {
    qCWarning(controlLog) << "disable_vgn_ui_control detected. vgn_control video functions was disabled permanently.";
    setProperty(ui_control_path, design_has_screens);
    return;
  }
  startThreads();
}

VgnControl::~VgnControl() {
  // Both threads are held by their start routines, which hear only direct calls.
  runtime_engine_monitor.stop();
  streamer_controller.stop();
  stopThread(streamer_thread);
  stopThread(monitor_thread);
}

std::map<QByteArray, VgnControl::Reaction> VgnControl::makeReactions() {
  return {
      {id_mode_path, [this](const QByteArray& value) { idModeUpdated(value); }},
      {design_status_path, [this](const QByteArray& value) { designStatusUpdated(value); }},
      {engine_state_path, [this](const QByteArray& value) { engineStateUpdated(value); }},
      {dev_options_path, [](const QByteArray& value) { zyl::dev_options::set(value.toStdString()); }},
      {valid_format_path, [this](const QByteArray& value) { Q_EMIT validFormatChanged(value); }},
  };
}

void VgnControl::watchProperties() {
  property_monitor.addProperties({engine_state_path, design_status_path, dev_options_path, id_mode_path,
                                  ui_control_path, hdmi1_properties_path, hdmi2_properties_path, valid_format_path});
  // Only so that they can be written: what is not watched is not written either.
  property_monitor.addProperties({hdmi1_screen_path, hdmi2_screen_path});
}

void VgnControl::connectMembers() {
  connect(&property_monitor, &PropertyMonitor::valueChanged, this, &VgnControl::propertyMonitorValueChanged);
  connect(&keys_handler, &KeysHandler::idKeyPressed, this, &VgnControl::idKeyPressed);
  connect(&keys_handler, &KeysHandler::factoryResetKeyPressed, this, &VgnControl::factoryResetKeyPressed);
  connect(&id_mode_timer, &QTimer::timeout, this, [this] { requestIdMode(false); });
  connectFactoryReset();
  connect(&ui_controller, &VgnUiController::setProperty, this, &VgnControl::setProperty);
  connect(this, &VgnControl::designStatusChanged, &ui_controller, &VgnUiController::designStatusChanged);
}

void VgnControl::connectFactoryReset() {
  const auto stop_flashing = [this] { led->stopFlashing(); };
  connect(&factory_reset, &FactoryResetController::resetInitiated, led.get(),
          [this] { led->startFlashing(reset_hold_flash_ms); });
  connect(&factory_reset, &FactoryResetController::resetCancelled, led.get(), stop_flashing);
  connect(&factory_reset, &FactoryResetController::resetStarted, led.get(), stop_flashing);
  connect(&factory_reset, &FactoryResetController::resetFailed, led.get(), stop_flashing);
  // The device is going down: the light stays as it is.
  connect(&factory_reset, &FactoryResetController::resetCompleted, led.get(), [] {});
}

void VgnControl::startThreads() {
  streamer_controller.moveToThread(&streamer_thread);
  runtime_engine_monitor.moveToThread(&monitor_thread);
  connect(&streamer_thread, &QThread::started, &streamer_controller, &StreamerController::start);
  connect(&streamer_controller, &StreamerController::finished, &streamer_thread, &QThread::quit);
  connect(&monitor_thread, &QThread::started, &runtime_engine_monitor, &RuntimeEngineMonitor::start);
  connect(&runtime_engine_monitor, &RuntimeEngineMonitor::finished, &monitor_thread, &QThread::quit);
  connect(&runtime_engine_monitor, &RuntimeEngineMonitor::statusChanged, this, &VgnControl::runtimeEngineStatusChanged);
  streamer_thread.start();
  monitor_thread.start();
}

void VgnControl::propertyMonitorValueChanged(const QByteArray& name, const QByteArray& value) {
  if (const auto reaction = reactions.find(name); reaction != reactions.end()) {
    reaction->second(value);
  }
}

void VgnControl::idModeUpdated(const QByteArray& value) {
  if (value == id_mode_on) {
    led->startFlashing(id_mode_flash_ms);
  } else if (value == id_mode_off) {
    led->stopFlashing();
  }
}

void VgnControl::designStatusUpdated(const QByteArray& value) {
  if (control_blocked) {
    return;
  }
  qCDebug(controlLog) << "design_status_updated" << value;
  design_ok = value == "OK";
  Q_EMIT designStatusChanged(value);
}

void VgnControl::engineStateUpdated(const QByteArray& value) {
  if (control_blocked) {
    return;
  }
  const bool running = value == "Running" || value == "Starting";
  QMetaObject::invokeMethod(this, "runtimeEngineStatusChanged", Q_ARG(bool, running));
}

void VgnControl::runtimeEngineStatusChanged(bool status) {
  qCDebug(controlLog) << Q_FUNC_INFO << "Runtime engine status:" << textOf(status)
                      << " id mode: " << property_monitor.value(id_mode_path);
  if (status) {
    streamer_controller.designRunning();
    setProperty(ui_control_path, design_has_screens);
    return;
  }
  Q_EMIT designStatusChanged("Stopped");
  streamer_controller.designStopped();
  setProperty(ui_control_path, ui_has_screens);
}

void VgnControl::setProperty(const QByteArray& name, const QByteArray& value) {
  qCInfo(controlLog) << "Set propety " << name << " to value: " << value;
  property_monitor.setValue(name, value);
}

void VgnControl::idKeyPressed(bool pressed) {
  if (pressed) {
    requestIdMode(property_monitor.value(id_mode_path) != id_mode_on);
  }
}

void VgnControl::factoryResetKeyPressed(bool pressed) {
  if (pressed) {
    factory_reset.start();
  } else {
    factory_reset.cancel();
  }
}

void VgnControl::requestIdMode(bool state) {
  qCInfo(controlLog) << "request new Id mode: " << textOf(state);
  if (state) {
    setProperty(id_mode_path, id_mode_on);
    id_mode_timer.start(id_mode_duration_ms);
    return;
  }
  setProperty(id_mode_path, id_mode_off);
  id_mode_timer.stop();
}

void VgnControl::hdmiPropertiesChanged(quint32 hdmi_index, const QString& properties) {
  qCDebug(controlLog).noquote() << QStringLiteral("HDMI out %1 properties changed: %2").arg(hdmi_index).arg(properties);
  const QByteArray& path = hdmi_index != 0 ? hdmi2_properties_path : hdmi1_properties_path;
  setProperty(path, publishedProperties(properties).toLocal8Bit());
}

}  // namespace vgn_control
