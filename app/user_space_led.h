#pragma once

#include <QFile>
#include <QString>

#include "app/led.h"

class QTimerEvent;

namespace vgn_control {

/// An LED of the kernel's LED class that this process switches on and off itself, by its file
/// "/sys/class/leds/<name>/brightness". The file may come later than this object.
class UserSpaceLED : public LED {
  Q_OBJECT

 public:
  /// `initial` is kept and has no effect.
  explicit UserSpaceLED(const QString& name, bool initial = false, QObject* parent = nullptr);

  /// Begins with the state that the LED is in; the first change comes after one interval. Called during the flashing it
  /// ends that, and leaves the LED as it happens to be.
  void startFlashing(int interval) override;

  /// Ends the flashing and switches the LED off.
  void stopFlashing() override;

  /// Whether the LED can be switched. Once true it stays true.
  virtual bool exists();

  /// Switches the LED on, at its full brightness, or off.
  virtual void setState(bool on);

  /// Sets the brightness, from 0.0 to 1.0; levels beyond that count as the nearer end. The LED is on with any level
  /// above 0.0, even if that is too faint to show. False if it failed.
  bool setValue(double level);

  /// Remembers whether the LED is on, and switches it to what was remembered last, once.
  void saveState();
  void restoreState();

 protected:
  void timerEvent(QTimerEvent* event) override;

  /// The file that switches the LED.
  QFile file;

 private:
  bool killFlashTimer();

  [[maybe_unused]] bool initial;
  bool saved_state = false;

 protected:
  /// Whether the LED has been seen.
  bool exists_flag = false;

 private:
  bool state = false;
  bool have_saved = false;
  int timer_id = 0;
};

}  // namespace vgn_control
