#pragma once

#include <QString>

namespace vgn_control {

/// The size, digits "x" digits, that a mode text begins with; empty if it begins otherwise.
QString leadingResolution(const QString& properties);

/// What the local user interface is told of an output that runs at `resolution`: the size itself up to 1920x1080, half
/// of it, rounded up, when either side is beyond that. A text that is no size, or too large a number, stays as it is.
QString publishedResolution(const QString& resolution);

}  // namespace vgn_control
