// What is asked of the outputs.
#include "control_lib/src/vgn_zsd_interface.h"
#include "control_lib/src/vgn_zsd_words.h"
#include "zyl/log/module_logger.h"

static auto& module_log = zyl::module_logger("vgn_operatives");
#include "zyl/log/log_bind.h"

namespace control_lib {
namespace {

constexpr uint32_t audio_sample_rate_hz = 48000;

const char* truth(bool value) { return value ? "true" : "false"; }

const char* yes_or_no(bool value) { return value ? "yes" : "no"; }

std::string name_of(const vgn_input_t* input) { return input != nullptr ? input->name : "none"; }

vgn::timing_t driver_timing(const edid_lib::vid_timing_t& timing) {
  return {.pixel_clock_khz = timing.pixel_clock_khz,
          .h_active = timing.h_active,
          .h_sync_start = timing.h_sync_start,
          .h_sync_end = timing.h_sync_end,
          .h_total = timing.h_total,
          .v_active = timing.v_active,
          .v_sync_start = timing.v_sync_start,
          .v_sync_end = timing.v_sync_end,
          .v_total = timing.v_total,
          .flags = timing.flags};
}

}  // namespace

bool vgn_zsd_interface_t::enable_hdmi_output(int index, bool enable, bool force) {
  if (!is_owner_thread()) {
    post([this, index, enable, force] { enable_hdmi_output(index, enable, force); });
    return true;
  }
  auto* const output = hdmi_output(index);
  if (output == nullptr) {
    return false;
  }
  const auto wanted = enable ? output_enable_e::enable : output_enable_e::disable;
  if (output->enable == wanted && !force) {
    return true;
  }
  log_info_s() << "vgn_zsd_interface_t::enable_hdmi_output(" << index
               << ") previous=" << output_enable_word(output->enable) << " new=" << output_enable_word(wanted);
  output->enable = wanted;
  raise_output(*output, output_hdmi_enable_event);
  return enable || route(*output, nullptr);
}

bool vgn_zsd_interface_t::set_output_mode(int index, const edid_lib::vid_timing_t& timing) {
  if (!is_owner_thread()) {
    post([this, index, timing] { set_output_mode(index, timing); });
    return true;
  }
  auto* const output = hdmi_output(index);
  if (output == nullptr) {
    return false;
  }
  if (timing != output->mode) {
    raise_output(*output, output_vid_info_event);
  }
  output->mode = timing;
  if (output->enable != output_enable_e::enable) {
    return true;
  }
  const bool clocked = system->set_audio_clock(output->id, audio_sample_rate_hz, timing.pixel_clock_khz);
  const bool timed = system->set_timing(output->id, driver_timing(timing));
  return clocked && timed;
}

bool vgn_zsd_interface_t::set_output(int index, int input_id, bool muted, bool frozen) {
  if (!is_owner_thread()) {
    post([this, index, input_id, muted, frozen] { set_output(index, input_id, muted, frozen); });
    return true;
  }
  auto* const output = hdmi_output(index);
  if (output == nullptr) {
    return false;
  }
  auto* const input = source_input(input_id);
  const bool changes = input != output->source;
  log_info_s() << "vgn_zsd_interface_t::set_output(" << name_of(input) << " -> " << output->name
               << ", muted=" << truth(muted) << ", freeze=" << truth(frozen)
               << " remove_output_source=" << yes_or_no(changes && output->source != nullptr)
               << " set_output_source=" << yes_or_no(changes && input != nullptr) << " ";
  bool done = route(*output, input);
  done &= apply_mute(*output, muted);
  done &= apply_freeze(*output, frozen);
  if (output->enable != output_enable_e::enable) {
    enable_hdmi_output(index, true, false);
  }
  note_connection(*output);
  return done;
}

bool vgn_zsd_interface_t::set_output(int index, int input_id) {
  if (!is_owner_thread()) {
    post([this, index, input_id] { set_output(index, input_id); });
    return true;
  }
  const auto* const output = hdmi_output(index);
  return output != nullptr && set_output(index, input_id, output->muted, output->frozen);
}

bool vgn_zsd_interface_t::set_output_source(int index, int input_id, uint32_t hw_source) {
  if (!is_owner_thread()) {
    post([this, index, input_id, hw_source] { set_output_source(index, input_id, hw_source); });
    return true;
  }
  auto* const output = hdmi_output(index);
  if (output == nullptr) {
    return false;
  }
  auto* const input = source_input(input_id);
  if (input == nullptr) {
    return route(*output, nullptr);
  }
  if (!system->set_output_source(output->id, input->id, hw_source)) {
    return false;
  }
  output->source = input;
  return true;
}

vgn_input_t* vgn_zsd_interface_t::source_input(int input_id) const {
  return input_id != -1 ? find_input(static_cast<uint32_t>(input_id)) : nullptr;
}

// Gives the output this source and no other. An old source that will not go fails the call, but is forgotten all the
// same: the next one replaces it.
bool vgn_zsd_interface_t::route(vgn_output_t& output, vgn_input_t* input) {
  if (input == output.source) {
    return true;
  }
  bool done = true;
  if (output.source != nullptr) {
    done = system->remove_output_source(output.id, output.source->id, output.source->hw_source);
    output.source = nullptr;
  }
  if (input == nullptr) {
    return done;
  }
  if (!system->set_output_source(output.id, input->id, input->hw_source)) {
    return false;
  }
  output.source = input;
  return done;
}

bool vgn_zsd_interface_t::apply_mute(vgn_output_t& output, bool muted) {
  if (muted == output.muted) {
    return true;
  }
  if (!system->set_output_mute(output.id, muted)) {
    return false;
  }
  output.muted = muted;
  return true;
}

bool vgn_zsd_interface_t::apply_freeze(vgn_output_t& output, bool frozen) {
  if (frozen == output.frozen) {
    return true;
  }
  if (!system->set_output_freeze(output.id, frozen)) {
    return false;
  }
  output.frozen = frozen;
  return true;
}

void vgn_zsd_interface_t::note_connection(vgn_output_t& output) {
  bool connected = output.connected;
  system->get_output_connected(output.id, connected);
  if (connected != output.connected) {
    log_info_s() << "vgn_zsd_interface_t::set_output() Output " << output.index << " connection status changed "
                 << output.connected << " -> " << connected;
    output.connected = connected;
  }
}

}  // namespace control_lib
