#include "app/xk21_monitor.h"

#include "lnx/src/ktm5030.h"

namespace vgn_control {

void XK21Monitor::designStatusChanged(const QByteArray& value) {
  if (value == "Stopped") {
    // Ignoring the result: without the device there is nothing to put back.
    static_cast<void>(lnx::ktm5030_set_mode(0));
  }
}

}  // namespace vgn_control
