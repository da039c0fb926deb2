#include "app/user_space_led.h"

#include "app/led_rules.h"

namespace vgn_control {

UserSpaceLED::UserSpaceLED(const QString& name, bool initial_state, QObject* parent)
    : LED(parent), file("/sys/class/leds/" + name + "/brightness"), initial(initial_state) {
  if (!UserSpaceLED::exists()) {
    qWarning("LED file %s doesn't exist", qUtf8Printable(file.fileName()));
  }
}

bool UserSpaceLED::exists() {
  exists_flag = exists_flag || file.exists();
  return exists_flag;
}

void UserSpaceLED::setState(bool on) { setValue(on ? 1.0 : 0.0); }

bool UserSpaceLED::setValue(double level) {
  // Unbuffered: a driver refuses a value when it is written, not when the file is closed.
  if (!exists() || !file.open(QIODevice::ReadWrite | QIODevice::Unbuffered)) {
    qWarning("Unable to open %s for writing!", qUtf8Printable(file.fileName()));
    return false;
  }
  state = level > 0;
  const QByteArray text = levelText(level);
  const bool written = file.write(text) == text.size();
  if (!written) {
    qWarning("Unable to set %s value", qUtf8Printable(file.fileName()));
  }
  file.close();
  return written;
}

void UserSpaceLED::startFlashing(int interval) {
  if (!killFlashTimer()) {
    timer_id = startTimer(interval, Qt::CoarseTimer);
  }
}

void UserSpaceLED::stopFlashing() {
  killFlashTimer();
  setState(false);
}

bool UserSpaceLED::killFlashTimer() {
  if (timer_id == 0) {
    return false;
  }
  killTimer(timer_id);
  timer_id = 0;
  return true;
}

void UserSpaceLED::timerEvent(QTimerEvent* /*event*/) { setState(!state); }

void UserSpaceLED::saveState() {
  saved_state = state;
  have_saved = true;
}

void UserSpaceLED::restoreState() {
  if (!have_saved) {
    qWarning("Can't restore previous state for %s: it wasn't saved before", qUtf8Printable(file.fileName()));
    return;
  }
  setState(saved_state);
  have_saved = false;
}

}  // namespace vgn_control
