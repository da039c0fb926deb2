#pragma once

#include <QByteArray>
#include <QFileSystemWatcher>
#include <QString>

#include "app/pattern_led.h"

namespace vgn_control {

/// A lamp of two colours: blue and green in steady light tell the device's status, flashing green is the id. The steady
/// light is as bright as the user's setting in "/var/rwfs2/led_brightness" says: "Off", "Dim", or anything else for
/// bright. The flashing is always bright, whatever the setting; a status that changes meanwhile shows when it ends.
class RGB_LED : public LED {
  Q_OBJECT

 public:
  /// `blue` and `green`: the names of the colours in the LED class; the levels from 0 to 255. Makes the setting's file
  /// if there is none. From then on follows it, as long as it is written in place.
  RGB_LED(const QString& blue, const QString& green, int bright, int dim, QObject* parent = nullptr);

  void startFlashing(int interval) override;
  void stopFlashing() override;

 public Q_SLOTS:
  /// The design is good if the value is "OK".
  void designStatusChanged(const QByteArray& value);
  /// The format is valid if the value is "true".
  void validFormatChanged(const QByteArray& value);
  /// Takes the setting from this file; bright if that cannot be read.
  void brightness_changed(const QString& path);

 private:
  void update();

  QFileSystemWatcher watcher;
  PatternLED status_led;
  PatternLED id_led;
  bool valid_format = false;
  bool design_ok = false;
  bool flashing = false;
  int brightness;
  int bright_level;
  int dim_level;
};

}  // namespace vgn_control
