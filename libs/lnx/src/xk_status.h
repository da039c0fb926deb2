#pragma once

#include <string>

namespace lnx {

// The board's own status files, "/sys/devices/platform/xk_status/<name>". Each function hands out the first line of the
// file that it is named after; false, and the text as it was, without one. They read the file anew each time, and may
// be called on any thread, except as the last one says.

/// "1" while the auxiliary supply feeds the board.
inline constexpr const char* aux_status_file = "/sys/devices/platform/xk_status/aux_status";
/// "1" while power over Ethernet does.
inline constexpr const char* poe_status_file = "/sys/devices/platform/xk_status/poe_status";

/// Of `aux_status_file`.
bool read_aux_status(std::string& out_text);

/// Of `poe_status_file`.
bool read_poe_status(std::string& out_text);

/// Of "board_id": which board this is.
bool read_board_id(std::string& out_text);

/// Of "product_id": which product the board is part of.
bool read_product_id(std::string& out_text);

/// Of "poe_class": the class that was agreed on with the other end of the cable. It stays what it is, so the process
/// keeps the first text that is not empty and does not open the file again.
///
/// Any thread, but the text is kept without a lock: until a call has found it, no two calls of this function and of
/// `read_power_source` may overlap.
bool read_poe_class(std::string& out_text);

}  // namespace lnx
