#include "app/rgb_led.h"

#include <QFile>

#include "app/led_rules.h"

namespace vgn_control {
namespace {

constexpr char setting_path[] = "/var/rwfs2/led_brightness";

void provideSetting() {
  QFile setting(setting_path);
  if (setting.exists()) {
    return;
  }
  if (setting.open(QIODevice::WriteOnly)) {
    qInfo("File %s didn't exist and was created.", setting_path);
  } else {
    qCritical("File %s doesn't exist and can't be created!", setting_path);
  }
}

QByteArray settingIn(const QString& path) {
  constexpr qint64 longest_setting = 64;
  QFile setting(path);
  if (!setting.open(QIODevice::ReadOnly)) {
    qWarning("Unable to open %s for reading!", qUtf8Printable(path));
    return {};
  }
  return setting.read(longest_setting);
}

}  // namespace

RGB_LED::RGB_LED(const QString& blue, const QString& green, int bright, int dim, QObject* parent)
    : LED(parent), status_led(blue), id_led(green), brightness(bright), bright_level(bright), dim_level(dim) {
  provideSetting();
  watcher.addPath(setting_path);
  connect(&watcher, &QFileSystemWatcher::fileChanged, this, &RGB_LED::brightness_changed);
  brightness_changed(setting_path);
}

void RGB_LED::startFlashing(int interval) {
  status_led.stopFlashing();
  id_led.start(interval, bright_level);
  flashing = true;
}

void RGB_LED::stopFlashing() {
  flashing = false;
  id_led.stopFlashing();
  update();
}

void RGB_LED::designStatusChanged(const QByteArray& value) {
  design_ok = value == "OK";
  update();
}

void RGB_LED::validFormatChanged(const QByteArray& value) {
  valid_format = value == "true";
  update();
}

void RGB_LED::brightness_changed(const QString& path) {
  brightness = brightnessOf(settingIn(path), bright_level, dim_level);
  update();
}

void RGB_LED::update() {
  if (flashing) {
    return;
  }
  const bool green = statusColour(valid_format, design_ok) == StatusColour::green;
  PatternLED& lit = green ? id_led : status_led;
  PatternLED& dark = green ? status_led : id_led;
  dark.stopFlashing();
  lit.setSteady(brightness);
}

}  // namespace vgn_control
