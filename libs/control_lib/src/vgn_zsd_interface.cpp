// The interface's life and its queries.
#include "control_lib/src/vgn_zsd_interface.h"

#include <algorithm>
#include <fstream>
#include <utility>

#include "control_lib/src/vgn_zsd_words.h"
#include "zyl/log/module_logger.h"

static auto& module_log = zyl::module_logger("vgn_operatives");
#include "zyl/log/log_bind.h"

namespace control_lib {
namespace {

constexpr int32_t poll_period_ms = 1000;

const char* truth(bool value) { return value ? "TRUE" : "FALSE"; }

void write_file(const std::string& path, const std::vector<uint8_t>& bytes) {
  std::ofstream file(path, std::ios::binary | std::ios::trunc);
  file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

}  // namespace

vgn_zsd_interface_t::vgn_zsd_interface_t(event_base* loop_base, std::unique_ptr<vgn::system_t> streamer,
                                         std::unique_ptr<mux_logic_t> mux)
    : mux_logic(mux ? std::move(mux) : std::make_unique<mux_logic_t>()),
      owned_system(std::move(streamer)),
      poll_timer(loop_base, poll_period_ms, false) {
  owned_system->added.connect([this](const std::string& /*node*/) { system_added(*owned_system); });
  owned_system->removed.connect([this](const std::string& /*node*/) { system_removed(*owned_system); });
  owned_system->link_changed.connect([this](uint32_t id, uint32_t type) { link_changed(id, type); });
  poll_timer.expired.connect([this] { on_poll_event(); });
}

vgn_zsd_interface_t::~vgn_zsd_interface_t() = default;

void vgn_zsd_interface_t::start() {
  if (!is_owner_thread()) {
    post([this] { start(); });
    return;
  }
  log_info_s() << "vgn_zsd_interface_t::start";
  owned_system->start();
}

void vgn_zsd_interface_t::stop() {
  if (!is_owner_thread()) {
    post([this] { stop(); });
    return;
  }
  owned_system->stop();
  release_resources();
  log_info_s() << "vgn_zsd_interface_t::stop done";
}

int vgn_zsd_interface_t::output_count() const { return system != nullptr ? static_cast<int>(hdmi_outputs.size()) : -1; }

bool vgn_zsd_interface_t::get_output_connection(int index, bool& connected) {
  auto* const output = hdmi_output(index);
  if (output == nullptr) {
    return false;
  }
  bool read = false;
  const bool success = system->get_output_connected(output->id, read);
  if (success) {
    output->connected = read;
    connected = read;
  }
  log_info_s() << "vgn_zsd_interface_t::get_output_connection(index=" << index << ", id=" << output->id
               << ") => success=" << truth(success) << " connected=" << truth(read);
  return success;
}

bool vgn_zsd_interface_t::get_output_edid(int index, std::vector<uint8_t>& edid) {
  const auto* const output = hdmi_output(index);
  if (output == nullptr || !system->get_edid(output->id, edid)) {
    return false;
  }
  write_file("/tmp/cur_edid_out_" + std::to_string(index) + ".bin", edid);
  return true;
}

bool vgn_zsd_interface_t::get_output_mode(int index, video_size_t& size) const {
  const auto* const output = hdmi_output(index);
  if (output == nullptr) {
    return false;
  }
  size = {static_cast<int>(output->mode.h_active), static_cast<int>(output->mode.v_active)};
  return true;
}

int vgn_zsd_interface_t::inject_input_id(int index) const {
  const bool known = index >= 0 && static_cast<size_t>(index) < inject_inputs.size();
  return known ? static_cast<int>(inject_inputs[static_cast<size_t>(index)]->id) : -1;
}

bool vgn_zsd_interface_t::add_output_observer(int index, const resource_slot_t& observer) {
  auto* const output = hdmi_output(index);
  if (output == nullptr) {
    return false;
  }
  output->events.connect(observer);
  return true;
}

bool vgn_zsd_interface_t::add_input_observer(uint32_t id, const resource_slot_t& observer) {
  auto* const input = find_input(id);
  if (input == nullptr) {
    return false;
  }
  input->events.connect(observer);
  return true;
}

vgn_input_t* vgn_zsd_interface_t::find_input(uint32_t id) const {
  const auto found = std::find_if(inputs.begin(), inputs.end(), [id](const auto& input) { return input->id == id; });
  return found != inputs.end() ? found->get() : nullptr;
}

vgn_output_t* vgn_zsd_interface_t::find_output(uint32_t id) const {
  const auto found =
      std::find_if(outputs.begin(), outputs.end(), [id](const auto& output) { return output->id == id; });
  return found != outputs.end() ? found->get() : nullptr;
}

vgn_output_t* vgn_zsd_interface_t::hdmi_output(int index) const {
  const bool known = system != nullptr && index >= 0 && static_cast<size_t>(index) < hdmi_outputs.size();
  return known ? hdmi_outputs[static_cast<size_t>(index)] : nullptr;
}

}  // namespace control_lib
