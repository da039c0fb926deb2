#pragma once

namespace sim {

/// Where the daemon looks for the factory reset script.
inline constexpr const char* reset_script_path = "/usr/zyl/www/cgi-bin/factory_reset_script";

/// Where the script of a simulated appliance finds that: a socket of packets. It sends its arguments, joined by blanks
/// and ended by a newline; the answer says how to end, "exits N" or "dies".
inline constexpr const char* reset_script_socket = "/tmp/.vgn-appliance.reset";

}  // namespace sim
