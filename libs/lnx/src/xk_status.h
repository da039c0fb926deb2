#pragma once

#include <string>

namespace lnx {

// The board's own status files, "/sys/devices/platform/xk_status/<name>". Each function hands out the first line of the
// file that it is named after; false, and the text as it was, without one.

/// "1" while the auxiliary supply feeds the board.
inline constexpr const char* aux_status_file = "/sys/devices/platform/xk_status/aux_status";
/// "1" while power over Ethernet does.
inline constexpr const char* poe_status_file = "/sys/devices/platform/xk_status/poe_status";

bool read_aux_status(std::string& out_text);
bool read_poe_status(std::string& out_text);
bool read_board_id(std::string& out_text);
bool read_product_id(std::string& out_text);

/// The class that was agreed on with the other end of the cable. It stays what it is, so the process keeps the first
/// text that is not empty and does not open the file again. The text is kept without a lock: the call that finds it
/// must not overlap with another one.
bool read_poe_class(std::string& out_text);

}  // namespace lnx
