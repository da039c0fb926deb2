#pragma once

#include <QLoggingCategory>

namespace vgn_control {

/// The category "zyl.vgn.control" of the application layer.
const QLoggingCategory& controlLog();

}  // namespace vgn_control
