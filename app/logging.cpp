#include "app/logging.h"

namespace vgn_control {

const QLoggingCategory& controlLog() {
  static const QLoggingCategory category("zyl.vgn.control");
  return category;
}

const QLoggingCategory& uiLog() {
  static const QLoggingCategory category("zyl.vgn.control.ui");
  return category;
}

}  // namespace vgn_control
