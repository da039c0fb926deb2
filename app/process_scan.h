#pragma once

#include <QByteArray>
#include <QStringList>
#include <string_view>

namespace vgn_control {

/// Whether an entry of "/proc" is a process: nothing but decimal digits. True for an empty name.
bool isProcessEntry(std::string_view entry);

/// The ids of the processes whose `comm`, without line breaks and without blanks at its ends, is exactly `name`, which
/// is in the local 8-bit encoding. A `comm` holds 15 bytes at most, so a longer name finds nothing. A process whose
/// `comm` cannot be read is passed over, as is one that ends during the scan. If "/proc" cannot be opened the program
/// ends. Any thread.
QStringList processesNamed(const QByteArray& name);

}  // namespace vgn_control
