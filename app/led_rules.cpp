#include "app/led_rules.h"

#include <cmath>

namespace vgn_control {

QByteArray levelText(double level) {
  constexpr double brightest = 255;
  // fmax takes what is no number for the lower end.
  // NOLINTNEXTLINE(bugprone-incorrect-roundings): the number is not negative, and halves go up
  return QByteArray::number(static_cast<int>(std::fmin(std::fmax(level * brightest, 0), brightest) + 0.5));
}

QByteArray patternText(const QString& pattern_template, int interval, int brightness) {
  return pattern_template.arg(interval).arg(brightness).toLatin1();
}

int brightnessOf(const QByteArray& setting, int bright_level, int dim_level) {
  const QByteArray word = setting.left(3);
  if (word == "Off") {
    return 0;
  }
  return word == "Dim" ? dim_level : bright_level;
}

StatusColour statusColour(bool valid_format, bool design_ok) {
  return valid_format && design_ok ? StatusColour::green : StatusColour::blue;
}

}  // namespace vgn_control
