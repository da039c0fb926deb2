#include "app/pwm_led.h"

namespace vgn_control {
namespace {

// What period and value are set to.
constexpr char full_period[] = "0 500";

QString pathOf(const QString& name, const char* attribute) { return "/proc/tarn/" + name + "/" + attribute; }

}  // namespace

PWM_LED::PWM_LED(const QString& node, bool initial_state, QObject* parent)
    : UserSpaceLED(node, initial_state, parent), name(node) {
  file.setFileName(pathOf(name, "out_en"));
  // What the base has seen is a file of another driver.
  exists_flag = false;
  initialise();
}

bool PWM_LED::exists() {
  if (!exists_flag) {
    initialise();
  }
  return exists_flag;
}

void PWM_LED::initialise() {
  const QString period = pathOf(name, "period");
  const QString value = pathOf(name, "value");
  if (!file.exists() || !QFile::exists(period) || !QFile::exists(value)) {
    qWarning("PWM LED '%s' not found", qUtf8Printable(name));
    return;
  }
  setUp(period, "period");
  setUp(value, "value");
  exists_flag = true;
}

void PWM_LED::setUp(const QString& path, const char* what) {
  QFile setting(path);
  if (!setting.open(QIODevice::ReadWrite | QIODevice::Unbuffered)) {
    qWarning("Unable to open %s %s for writing!", qUtf8Printable(name), what);
    return;
  }
  if (setting.write(full_period) != qstrlen(full_period)) {
    qWarning("Unable to set %s %s", qUtf8Printable(name), what);
  }
}

}  // namespace vgn_control
