#include "app/pattern_led.h"

#include <QFile>

#include "app/led_rules.h"

namespace vgn_control {
namespace {

constexpr int usual_brightness = 15;

}  // namespace

// The pattern is pairs of a brightness and the milliseconds to fade from there to the next. The second pair of each
// phase takes no time, so that light and dark follow each other without a fade.
PatternLED::PatternLED(const QString& led, QObject* parent)
    : LED(parent), name(led), pattern_template(QStringLiteral("%2 %1 %2 0 0 %1 0 0")) {
  if (!write("trigger", "pattern")) {
    qWarning("PWM LED '%s' not found", qUtf8Printable(name));
  }
}

void PatternLED::startFlashing(int interval) { start(interval, usual_brightness); }

void PatternLED::start(int interval, int brightness) {
  write("trigger", "pattern");
  write("repeat", "-1");
  write("pattern", patternText(pattern_template, interval, brightness));
}

void PatternLED::stopFlashing() { setSteady(0); }

void PatternLED::setSteady(int brightness) {
  // An empty pattern ends the one that is played.
  write("pattern", "\n", true);
  write("brightness", QByteArray::number(brightness));
}

bool PatternLED::write(const char* attribute, const QByteArray& text, bool quiet) {
  const QByteArray led = name.toUtf8();
  QFile file("/sys/class/leds/" + name + "/" + attribute);
  // Unbuffered: the kernel refuses a text when it is written, not when the file is closed.
  if (!file.open(QIODevice::WriteOnly | QIODevice::Unbuffered)) {
    if (!quiet) {
      qWarning("Unable to open %s/%s for writing!", led.constData(), attribute);
    }
    return false;
  }
  const bool written = file.write(text) == text.size();
  if (!written) {
    qWarning("Error writing %s/%s for led %s", led.constData(), attribute, led.constData());
  }
  return written;
}

}  // namespace vgn_control
