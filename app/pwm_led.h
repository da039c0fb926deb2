#pragma once

#include <QString>

#include "app/user_space_led.h"

namespace vgn_control {

/// An LED on an output of a PWM driver, whose files are "out_en", "period" and "value" in "/proc/tarn/<name>/". It is
/// switched by the first; the other two are set up once, as soon as the driver is there.
class PWM_LED : public UserSpaceLED {
  Q_OBJECT

 public:
  /// `name`: the driver's node. Sets the driver up, or warns that it is missing. `initial` is kept and has no effect.
  explicit PWM_LED(const QString& name, bool initial = false, QObject* parent = nullptr);

  /// Sets the driver up if that has not been done; false while it is missing.
  bool exists() override;

 private:
  void initialise();
  void setUp(const QString& path, const char* what);

  QString name;
};

}  // namespace vgn_control
