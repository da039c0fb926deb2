#pragma once

#include <sigc++/sigc++.h>

#include <cstdint>
#include <string>

#include "edid_lib/vid_timing.h"
#include "vgn/src/system.h"

namespace control_lib {

/// What an event of an input says. Several bits may come in one event.
enum input_event_e : uint32_t {
  input_connection_event = 1,
  input_hdcp_event = 2,
  input_audio_channels_event = 4,
  input_active_audio_event = 8,
  input_streamup_event = 16,
  input_streamdown_event = 32,
  input_avi_infoframe_event = 64,
};

/// What an event of an output says.
enum output_event_e : uint32_t {
  output_connection_event = 1,
  output_disconnection_event = 2,
  output_streamup_event = 4,
  output_streamdown_event = 8,
  output_hdcp_event = 16,
  output_hdmi_enable_event = 32,
  output_vid_info_event = 64,
};

/// Whether somebody has asked for an output. The first who does is always heard.
enum class output_enable_e { unknown = 0, enable = 1, disable = 2 };

/// Hears the events of one input or output: its id on the streamer device, and the bits.
using resource_slot_t = sigc::slot<void, uint32_t, uint32_t>;
using resource_signal_t = sigc::signal<void, uint32_t, uint32_t>;

/// An input of the device and what was last seen of it.
struct vgn_input_t {
  std::string name;
  uint32_t kind = 0;  ///< `vgn::input_kind_e`
  int index = -1;     ///< place in its vector; -1 if its kind has none
  uint32_t id = 0;
  resource_signal_t events;
  uint32_t hw_source = 0;  ///< source number for routing
  bool connected = false;
  vgn::hdcp_status_t hdcp;
  uint32_t audio_channels = 0;
  uint32_t active_audio = 0;
};

/// An output of the device, what was asked of it and what was last seen of it.
struct vgn_output_t {
  std::string name;
  uint32_t kind = 0;  ///< `vgn::output_kind_e`
  int index = -1;     ///< place in its vector; -1 if its kind has none
  uint32_t id = 0;
  resource_signal_t events;
  vgn_input_t* source = nullptr;  ///< the routed input, or null
  bool connected = false;
  output_enable_e enable = output_enable_e::unknown;
  edid_lib::vid_timing_t mode;  ///< the timing asked for, programmed or not
  vgn::hdcp_status_t hdcp;
  bool muted = false;
  bool frozen = false;
};

}  // namespace control_lib
