#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "vgn/src/audio_clock.h"
#include "vgn/src/system.h"
#include "zyl/log/module_logger.h"

static auto& module_log = zyl::module_logger("drv_vgnstreamer");
#include "zyl/log/log_bind.h"

namespace vgn {
namespace {

// What the driver may make us allocate: far above any device, far below any harm.
constexpr uint32_t max_resources = 4096;
// An EDID is at most a base block and 255 extensions of 128 bytes.
constexpr uint64_t max_edid_size = uint64_t{256} * 128;

uint64_t address_of(void* data) { return reinterpret_cast<uintptr_t>(data); }

}  // namespace

int system_t::call(uint32_t request, void* record) { return attached() ? device->ioctl(request, record) : -ENODEV; }

bool system_t::request(const char* name, uint32_t number, void* record) {
  const int result = call(number, record);
  if (result < 0) {
    log_error_s() << "ioctl " << name << " failed errno=" << -result;
  }
  return result == 0;
}

// For what is asked every second, or may well be refused: a driver that always fails it would fill the log.
bool system_t::quiet_request(const char* name, uint32_t number, void* record) {
  const int result = call(number, record);
  if (result < 0) {
    log_debug_s() << "ioctl " << name << " failed errno=" << -result;
  }
  return result == 0;
}

bool system_t::get_resources(std::vector<uint32_t>& input_ids, std::vector<uint32_t>& output_ids) {
  resources_record_t record{};
  if (!request("get_resources", resources_request, &record)) {
    return false;
  }
  if (record.input_count > max_resources || record.output_count > max_resources) {
    return false;
  }
  std::vector<uint32_t> inputs(record.input_count);
  std::vector<uint32_t> outputs(record.output_count);
  record.input_ids = address_of(inputs.data());
  record.output_ids = address_of(outputs.data());
  if (!request("get_resources", resources_request, &record)) {
    return false;
  }
  inputs.resize(std::min<size_t>(inputs.size(), record.input_count));
  outputs.resize(std::min<size_t>(outputs.size(), record.output_count));
  input_ids = std::move(inputs);
  output_ids = std::move(outputs);
  return true;
}

bool system_t::read_resource(const char* name, uint32_t number, uint32_t id, resource_t& resource) {
  resource_record_t record{};
  record.id = id;
  if (!request(name, number, &record)) {
    return false;
  }
  resource.name.assign(record.name, strnlen(record.name, sizeof(record.name)));
  resource.kind = record.kind;
  resource.hw_source = record.hw;
  return true;
}

bool system_t::get_input(uint32_t input_id, resource_t& resource) {
  return read_resource("get_input", input_request, input_id, resource);
}

bool system_t::get_output(uint32_t output_id, resource_t& resource) {
  return read_resource("get_output", output_request, output_id, resource);
}

bool system_t::get_edid(uint32_t output_id, std::vector<uint8_t>& edid) {
  edid_record_t record{};
  record.id = output_id;
  if (!request("get_edid", read_edid_request, &record) || record.size > max_edid_size) {
    return false;
  }
  std::vector<uint8_t> bytes(record.size);
  record.bytes = address_of(bytes.data());
  if (!request("get_edid", read_edid_request, &record)) {
    return false;
  }
  bytes.resize(std::min<uint64_t>(bytes.size(), record.size));
  edid = std::move(bytes);
  return true;
}

bool system_t::set_timing(uint32_t output_id, const timing_t& timing) {
  timing_record_t record{.id = output_id, .timing = timing, .zero = {}};
  return request("set_timing", set_timing_request, &record);
}

bool system_t::set_audio_clock(uint32_t output_id, uint32_t sample_rate_hz, uint32_t tmds_khz) {
  const auto clock = audio_clock(sample_rate_hz, tmds_khz);
  audio_record_t record{.id = output_id, .a = clock.a, .cts = clock.cts, .q = clock.q};
  return request("set_audio_clock", set_audio_clock_request, &record);
}

bool system_t::get_hdcp_status(uint32_t id, hdcp_status_t& status) {
  hdcp_record_t record{};
  record.id = id;
  if (!quiet_request("get_hdcp_status", hdcp_status_request, &record)) {
    return false;
  }
  status = {static_cast<hdcp_auth_e>(record.authentication), static_cast<hdcp_enc_e>(record.encryption)};
  return true;
}

bool system_t::set_output_source(uint32_t output_id, uint32_t input_id, uint32_t hw_source) {
  source_record_t record{.input_id = input_id, .output_id = output_id, .hw = hw_source};
  return request("set_output_source", set_output_source_request, &record);
}

bool system_t::remove_output_source(uint32_t output_id, uint32_t input_id, uint32_t hw_source) {
  source_record_t record{.input_id = input_id, .output_id = output_id, .hw = hw_source};
  return request("remove_output_source", remove_output_source_request, &record);
}

bool system_t::clear_output_source(uint32_t output_id, uint32_t input_id, uint32_t hw_source) {
  source_record_t record{.input_id = input_id, .output_id = output_id, .hw = hw_source};
  return quiet_request("remove_output_source", remove_output_source_request, &record);
}

bool system_t::read_polled_value(const char* name, uint32_t number, uint32_t id, uint32_t& value) {
  value_record_t record{.id = id, .value = 0};
  if (!quiet_request(name, number, &record)) {
    return false;
  }
  value = record.value;
  return true;
}

bool system_t::get_input_connected(uint32_t input_id, bool& connected) {
  uint32_t value = 0;
  if (!read_polled_value("get_input_connected", input_connected_request, input_id, value)) {
    return false;
  }
  connected = value != 0;
  return true;
}

bool system_t::get_output_connected(uint32_t output_id, bool& connected) {
  value_record_t record{.id = output_id, .value = 0};
  if (!request("get_output_connected", output_connected_request, &record)) {
    return false;
  }
  connected = record.value != 0;
  return true;
}

bool system_t::get_audio_channels(uint32_t input_id, uint32_t& channels) {
  return read_polled_value("get_audio_channels", audio_channels_request, input_id, channels);
}

bool system_t::get_active_audio(uint32_t input_id, uint32_t& active_audio) {
  return read_polled_value("get_active_audio", active_audio_request, input_id, active_audio);
}

bool system_t::set_output_mute(uint32_t output_id, bool muted) {
  value_record_t record{.id = output_id, .value = muted ? 1U : 0U};
  return request("set_output_mute", set_output_mute_request, &record);
}

bool system_t::set_output_freeze(uint32_t output_id, bool frozen) {
  value_record_t record{.id = output_id, .value = frozen ? 1U : 0U};
  return request("set_output_freeze", set_output_freeze_request, &record);
}

bool system_t::set_hdmi_mux_input_mode(uint32_t mode) {
  value_record_t record{.id = 0, .value = mode};
  return request("set_hdmi_mux_input_mode", set_hdmi_mux_input_mode_request, &record);
}

}  // namespace vgn
