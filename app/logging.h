#pragma once

#include <QLoggingCategory>

namespace vgn_control {

/// The category "zyl.vgn.control" of the application layer.
const QLoggingCategory& controlLog();

/// The category "zyl.vgn.control.ui" of what decides on the screens of the local user interface.
const QLoggingCategory& uiLog();

}  // namespace vgn_control
