#include "control_lib/src/vgn_zsd_interface.h"

namespace control_lib {

int vgn_zsd_interface_t::mux_logic_t::mode() const { return 0; }

void vgn_zsd_interface_t::mux_logic_t::set_mode(vgn_zsd_interface_t& /*interface*/, int /*mode*/) {}

bool vgn_zsd_interface_t::mux_logic_t::is_input_blocked(int /*index*/) const { return false; }

void vgn_zsd_interface_t::mux_logic_t::init(vgn_zsd_interface_t& /*interface*/) {}

uint32_t vgn_zsd_interface_t::mux_logic_t::hdmi_mask() const { return 0; }

uint32_t vgn_zsd_interface_t::mux_logic_t::usb_mask() const { return 0; }

void vgn_zsd_interface_t::mux_logic_t::reset(vgn_zsd_interface_t& /*interface*/) {}

}  // namespace control_lib
