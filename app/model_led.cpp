#include "app/model_led.h"

#include "app/pwm_led.h"
#include "app/rgb_led.h"
#include "app/user_space_led.h"
#include "app/vgn_control.h"
#include "app/xk21_monitor.h"

namespace vgn_control {
namespace {

constexpr uint32_t model_with_pwm_led = 105;
constexpr uint32_t model_with_rgb_led = 106;

constexpr int bright_level = 15;
constexpr int dim_level = 5;

/// Lives for the process and belongs to nobody: `exit` must not destroy it while the coordinator still speaks.
XK21Monitor& xk21Monitor() {
  static XK21Monitor* const monitor = std::make_unique<XK21Monitor>().release();
  return *monitor;
}

std::unique_ptr<LED> makePwmLed(VgnControl& control) {
  QObject::connect(&control, &VgnControl::designStatusChanged, &xk21Monitor(), &XK21Monitor::designStatusChanged);
  return std::make_unique<PWM_LED>("pwm-0", false, &control);
}

std::unique_ptr<LED> makeRgbLed(VgnControl& control) {
  auto led =
      std::make_unique<RGB_LED>("xk1-rgb-led:blue:status", "xk1-rgb-led:green:id", bright_level, dim_level, &control);
  QObject::connect(&control, &VgnControl::designStatusChanged, led.get(), &RGB_LED::designStatusChanged);
  QObject::connect(&control, &VgnControl::validFormatChanged, led.get(), &RGB_LED::validFormatChanged);
  return led;
}

}  // namespace

std::unique_ptr<LED> makeModelLed(uint32_t model, VgnControl& control) {
  switch (model) {
    case model_with_pwm_led:
      return makePwmLed(control);
    case model_with_rgb_led:
      return makeRgbLed(control);
    default:
      return std::make_unique<UserSpaceLED>("id_led", false, &control);
  }
}

}  // namespace vgn_control
