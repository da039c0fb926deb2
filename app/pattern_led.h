#pragma once

#include <QByteArray>
#include <QString>

#include "app/led.h"

namespace vgn_control {

/// An LED that the kernel lets flash, by the "pattern" trigger of the LED class. Its files are "trigger", "pattern",
/// "repeat" and "brightness" in "/sys/class/leds/<name>/".
class PatternLED : public LED {
  Q_OBJECT

 public:
  /// `name`: the LED's in the LED class. Gives it the trigger; warns if that fails, and can be used all the same.
  explicit PatternLED(const QString& name, QObject* parent = nullptr);

  /// Flashes at the usual brightness, 15.
  void startFlashing(int interval) override;

  /// Ends the flashing, and the light.
  void stopFlashing() override;

  /// Flashes at this brightness, 0 to 255: on and off for `interval` milliseconds each.
  virtual void start(int interval, int brightness);

  /// Ends the flashing; steady light of this brightness, 0 to 255.
  void setSteady(int brightness);

 private:
  bool write(const char* attribute, const QByteArray& text, bool quiet = false);

  QString name;
  QString pattern_template;
};

}  // namespace vgn_control
