// The interface looks for changes that the driver does not tell of.
#include "control_lib/src/connector_power.h"
#include "control_lib/src/vgn_zsd_interface.h"
#include "control_lib/src/vgn_zsd_words.h"
#include "zyl/log/module_logger.h"
#include "zyl/platform.h"

static auto& module_log = zyl::module_logger("vgn_operatives");
#include "zyl/log/log_bind.h"

namespace control_lib {
namespace {

uint32_t model_id() { return zyl::platform_t::get().part(); }

// The model whose driver does not see cables: its inputs always go by the connector's own line.
bool cables_are_seen_by_connector() { return model_id() == 137; }

template <typename Old, typename New>
void log_input_change(const vgn_input_t& input, const char* what, const Old& old_value, const New& new_value) {
  log_info_s() << "vgn_zsd_interface_t::on_poll_event() input_index=" << input.index << " input_id=" << input.id << what
               << " changed " << old_value << " -> " << new_value;
}

template <typename Old, typename New>
void log_output_change(const vgn_output_t& output, const Old& old_value, const New& new_value) {
  log_info_s() << "vgn_zsd_interface_t::on_poll_event() Output " << output.index << " changed " << old_value << " -> "
               << new_value;
}

// Stores `status`, telling `log` the words of each of the two states that changes. Whether one did.
template <typename Log>
bool take_hdcp_status(vgn::hdcp_status_t& stored, const vgn::hdcp_status_t& status, const Log& log) {
  const bool authentication_changed = stored.authentication != status.authentication;
  const bool encryption_changed = stored.encryption != status.encryption;
  if (authentication_changed) {
    log(hdcp_auth_word(stored.authentication), hdcp_auth_word(status.authentication));
  }
  if (encryption_changed) {
    log(hdcp_enc_word(stored.encryption), hdcp_enc_word(status.encryption));
  }
  stored = status;
  return authentication_changed || encryption_changed;
}

}  // namespace

void vgn_zsd_interface_t::on_poll_event() {
  for (auto* const input : hdmi_inputs) {
    poll_input(*input);
  }
  for (auto* const output : hdmi_outputs) {
    poll_output(*output);
  }
}

void vgn_zsd_interface_t::poll_input(vgn_input_t& input) {
  if (mux_logic->is_input_blocked(input.index)) {
    poll_blocked_input(input);
    return;
  }
  bits_t bits = poll_input_hdcp(input);
  bits |= poll_input_connection(input);
  bits |= poll_audio_channels(input);
  if (bits != 0) {
    raise_input(input, bits, false);
  }
  if (const bits_t audio = poll_active_audio(input); audio != 0) {
    raise_input(input, bits | audio, false);
  }
}

// The mux shows the driver nothing of this input, but its connector still knows whether a cable is in.
void vgn_zsd_interface_t::poll_blocked_input(vgn_input_t& input) {
  const auto powered = connector_power(input.index, model_id());
  if (powered && *powered != input.connected) {
    input.connected = *powered;
    raise_input(input, input_connection_event, true);
  }
}

vgn_zsd_interface_t::bits_t vgn_zsd_interface_t::poll_input_hdcp(vgn_input_t& input) {
  vgn::hdcp_status_t status;
  if (!system->get_hdcp_status(input.id, status)) {
    return 0;
  }
  const auto log = [&input](const std::string& old_word, const std::string& new_word) {
    log_input_change(input, "", old_word, new_word);
  };
  const bool changed = take_hdcp_status(input.hdcp, status, log);
  return changed ? bits_t{input_hdcp_event} : 0;
}

vgn_zsd_interface_t::bits_t vgn_zsd_interface_t::poll_input_connection(vgn_input_t& input) {
  bool connected = false;
  if (!read_input_connection(input, connected) || connected == input.connected) {
    return 0;
  }
  log_input_change(input, " connection status", input.connected, connected);
  input.connected = connected;
  return input_connection_event;
}

vgn_zsd_interface_t::bits_t vgn_zsd_interface_t::poll_audio_channels(vgn_input_t& input) {
  uint32_t channels = 0;
  if (!system->get_audio_channels(input.id, channels) || channels == input.audio_channels) {
    return 0;
  }
  log_input_change(input, " audio channels", input.audio_channels, channels);
  input.audio_channels = channels;
  return input_audio_channels_event;
}

vgn_zsd_interface_t::bits_t vgn_zsd_interface_t::poll_active_audio(vgn_input_t& input) {
  uint32_t active_audio = 0;
  if (!system->get_active_audio(input.id, active_audio) || active_audio == input.active_audio) {
    return 0;
  }
  log_input_change(input, " active audio", input.active_audio, active_audio);
  input.active_audio = active_audio;
  return input_active_audio_event;
}

void vgn_zsd_interface_t::poll_output(vgn_output_t& output) {
  vgn::hdcp_status_t status;
  if (!system->get_hdcp_status(output.id, status)) {
    return;
  }
  const auto log = [&output](const std::string& old_word, const std::string& new_word) {
    log_output_change(output, old_word, new_word);
  };
  if (take_hdcp_status(output.hdcp, status, log)) {
    raise_output(output, output_hdcp_event);
  }
}

bool vgn_zsd_interface_t::read_input_connection(const vgn_input_t& input, bool& connected) {
  if (!mux_logic->is_input_blocked(input.index) && !cables_are_seen_by_connector()) {
    return system->get_input_connected(input.id, connected);
  }
  const auto powered = connector_power(input.index, model_id());
  connected = powered.value_or(connected);
  return powered.has_value();
}

void vgn_zsd_interface_t::init_input_poll_state(int64_t id, bits_t mask) {
  for (auto* const input : hdmi_inputs) {
    if (id != -1 && input->id != id) {
      continue;
    }
    if ((mask & input_connection_event) != 0) {
      read_input_connection(*input, input->connected);
    }
    if ((mask & input_hdcp_event) != 0) {
      system->get_hdcp_status(input->id, input->hdcp);
    }
    if ((mask & input_audio_channels_event) != 0) {
      system->get_audio_channels(input->id, input->audio_channels);
    }
    if ((mask & input_active_audio_event) != 0) {
      system->get_active_audio(input->id, input->active_audio);
    }
  }
}

void vgn_zsd_interface_t::init_output_poll_state(int64_t id, bits_t mask) {
  for (auto* const output : hdmi_outputs) {
    if (id != -1 && output->id != id) {
      continue;
    }
    if ((mask & output_connection_event) != 0) {
      system->get_output_connected(output->id, output->connected);
    }
    if ((mask & output_hdcp_event) != 0) {
      system->get_hdcp_status(output->id, output->hdcp);
    }
  }
}

void vgn_zsd_interface_t::raise_input(vgn_input_t& input, bits_t bits, bool forced) {
  if (!forced && mux_logic->is_input_blocked(input.index)) {
    return;
  }
  log_debug_s() << "input " << input.id << " raises " << input_event_words(bits);
  input.events.emit(input.id, bits);
}

void vgn_zsd_interface_t::raise_output(vgn_output_t& output, bits_t bits) {
  log_debug_s() << "output " << output.id << " raises " << output_event_words(bits);
  output.events.emit(output.id, bits);
}

}  // namespace control_lib
