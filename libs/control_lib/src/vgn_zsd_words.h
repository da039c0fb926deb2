#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "control_lib/src/vgn_zsd_resources.h"
#include "vgn/src/vgn_ioctl.h"

namespace control_lib {

// The words of the log for the numbers of the HDMI interface.

/// "HDMI_IN" and so on; "UNKNOWN (n)" for a kind not known here.
std::string input_kind_word(uint32_t kind);

/// "HDMI_OUT", "CAPTURE" or "UNKNOWN".
std::string_view output_kind_word(uint32_t kind);

/// "unknown", "enable" or "disable".
std::string_view output_enable_word(output_enable_e enable);

/// The driver's name of the state; the number of one not known here.
std::string hdcp_auth_word(vgn::hdcp_auth_e authentication);
std::string hdcp_enc_word(vgn::hdcp_enc_e encryption);

/// "input_link" and so on; "(unknown)" for a type not known here.
std::string_view link_event_word(uint32_t type);

/// A word for each bit that is set, lowest first, each followed by a blank.
std::string input_event_words(uint32_t bits);
std::string output_event_words(uint32_t bits);

}  // namespace control_lib
