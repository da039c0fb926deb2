#pragma once

#include <QByteArray>
#include <QString>

namespace vgn_control {

/// The text of a brightness file for a level from 0.0 (dark) to 1.0: "0" to "255", rounded, without a line end. Levels
/// beyond that count as the nearer end.
QByteArray levelText(double level);

/// What the kernel's pattern trigger plays: the template with the period of each phase in milliseconds for %1 and the
/// brightness of the lit one for %2.
QByteArray patternText(const QString& pattern_template, int interval, int brightness);

/// The steady brightness that a content of the setting's file asks for. Its first three bytes decide: "Off" is 0, "Dim"
/// is `dim_level`; anything else, and less than three bytes, is `bright_level`.
int brightnessOf(const QByteArray& setting, int bright_level, int dim_level);

/// The colour that tells the device's status.
enum class StatusColour { blue, green };

/// Green as long as a good design receives a valid format, else blue.
StatusColour statusColour(bool valid_format, bool design_ok);

}  // namespace vgn_control
