#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace lnx {

/// What feeds the board: 1 the auxiliary supply, 2 to 4 power over Ethernet by `poe_power_class`, 0 neither so far.
///
/// The first answer but 0 is kept by the process and no file is opened for it again; 0 is asked anew next time. While
/// the auxiliary supply is there, the files of power over Ethernet are not opened. False, with the output as it was and
/// no answer kept, if the auxiliary supply is not there, or cannot be asked, and the PoE status cannot be read; also if
/// the PoE class is needed and is no number, which `read_poe_class` then keeps for the life of the process.
///
/// Any thread, but the answer is kept without a lock: until a call has found it, no two calls of this function and of
/// `read_poe_class` may overlap.
bool read_power_source(uint32_t& out_power_class);

/// 2 for a PoE class below 4 (802.3af), 3 for class 4 (802.3at), 4 for 5 and more (802.3bt). The text begins with a
/// number, perhaps after white space and a sign; nothing if it does not, or if that is no `int`.
std::optional<uint32_t> poe_power_class(const std::string& poe_class);

}  // namespace lnx
