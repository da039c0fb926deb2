#include "app/vgn_ui_controller.h"

namespace vgn_control {
namespace {

const QByteArray hdmi1_screen_path = "/vgn_ui/hdmi1_current_screen";
const QByteArray hdmi2_screen_path = "/vgn_ui/hdmi2_current_screen";

}  // namespace

void VgnUiController::designStatusChanged(const QByteArray& value) {
  if (value == "OK") {
    state = State::design_up;
  } else if (state == State::unknown) {
    // Asserted at each status, not only at the first.
    showOnAll("boot_splash_screen");
  } else if (state == State::design_up) {
    showOnAll("disconnected");
    state = State::design_lost;
  }
}

void VgnUiController::showOnAll(const QByteArray& screen) {
  for (const QByteArray& path : {hdmi1_screen_path, hdmi2_screen_path}) {
    Q_EMIT setProperty(path, screen);
  }
}

}  // namespace vgn_control
