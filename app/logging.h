#pragma once

#include <QLoggingCategory>

namespace vgn_control {

/// The category "zyl.vgn.control" of the application layer.
const QLoggingCategory& controlLog();

/// The category "zyl.vgn.control.ui" of what the local user interface is told.
const QLoggingCategory& uiLog();

}  // namespace vgn_control
