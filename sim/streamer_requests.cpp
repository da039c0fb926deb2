#include "sim/streamer_requests.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <map>

namespace sim {
namespace {

using handler_t = request_result_t (*)(streamer_model_t& model, std::span<uint8_t> record,
                                       const client_writer_t& write);
using output_t = streamer_output_t;

request_result_t failure(int error) {
  request_result_t result;
  result.error = error;
  return result;
}

template <typename Record>
Record load(std::span<const uint8_t> bytes) {
  Record record{};
  std::memcpy(&record, bytes.data(), sizeof record);
  return record;
}

template <typename Record>
void store(const Record& record, std::span<uint8_t> bytes) {
  std::memcpy(bytes.data(), &record, sizeof record);
}

std::string output_name(const streamer_model_t& model, const output_t& output) {
  const auto connector = model.connector(output.resource.id);
  return connector ? "output " + std::to_string(*connector) : resource_name(output.resource);
}

std::string source_name(const streamer_model_t& model, const output_t& output) {
  return output.programmed.source ? resource_name(model.find_input(*output.programmed.source)->resource) : "";
}

std::string timing_text(const vgn::timing_t& timing) {
  const uint32_t numbers[] = {timing.pixel_clock_khz, timing.h_active, timing.h_sync_start, timing.h_sync_end,
                              timing.h_total,         timing.v_active, timing.v_sync_start, timing.v_sync_end,
                              timing.v_total,         timing.flags};
  std::string text;
  for (const uint32_t number : numbers) {
    text += (text.empty() ? "" : " ") + std::to_string(number);
  }
  return text;
}

std::string audio_text(const vgn::audio_record_t& audio) {
  return std::to_string(audio.a) + " " + std::to_string(audio.cts) + " " + std::to_string(audio.q);
}

// What came of a request that was about the output's property of this name.
request_result_t changed(const streamer_model_t& model, const output_t& output, const std::string& property,
                         const std::string& what) {
  request_result_t result;
  result.story = output_name(model, output) + ": " + what;
  if (const auto connector = model.connector(output.resource.id)) {
    for (auto& [path, value] : programmed_properties(model, *connector)) {
      if (path == hdmi_property(*connector, property)) {
        result.published.emplace_back(std::move(path), std::move(value));
      }
    }
  }
  return result;
}

template <typename Resources>
bool write_ids(const Resources& resources, size_t wanted, size_t pointer_offset, const client_writer_t& write) {
  std::vector<uint32_t> ids;
  ids.reserve(resources.size());
  for (const auto& known : resources) {
    ids.push_back(known.resource.id);
  }
  ids.resize(std::min(wanted, ids.size()));
  const auto bytes = std::as_bytes(std::span(ids));
  return ids.empty() || write(pointer_offset, {reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()});
}

request_result_t list_resources(streamer_model_t& model, std::span<uint8_t> record, const client_writer_t& write) {
  auto listed = load<vgn::resources_record_t>(record);
  request_result_t result;
  if (listed.input_ids != 0 || listed.output_ids != 0) {
    if (!write_ids(model.inputs(), listed.input_count, offsetof(vgn::resources_record_t, input_ids), write) ||
        !write_ids(model.outputs(), listed.output_count, offsetof(vgn::resources_record_t, output_ids), write)) {
      return failure(EFAULT);
    }
    result.story = "resources listed: " + std::to_string(model.inputs().size()) + " inputs, " +
                   std::to_string(model.outputs().size()) + " outputs";
  }
  listed.input_count = static_cast<uint32_t>(model.inputs().size());
  listed.output_count = static_cast<uint32_t>(model.outputs().size());
  store(listed, record);
  return result;
}

request_result_t tell_input(streamer_model_t& model, std::span<uint8_t> record, const client_writer_t& /*write*/) {
  const streamer_input_t* input = model.find_input(load<vgn::resource_record_t>(record).id);
  if (input == nullptr) {
    return failure(EINVAL);
  }
  store(input->resource, record);
  return {};
}

request_result_t tell_output(streamer_model_t& model, std::span<uint8_t> record, const client_writer_t& /*write*/) {
  const output_t* output = model.find_output(load<vgn::resource_record_t>(record).id);
  if (output == nullptr) {
    return failure(EINVAL);
  }
  store(output->resource, record);
  return {};
}

// The EDID was read once its bytes have gone out, or, when there are none, its size.
request_result_t edid_was_read(const streamer_model_t& model, output_t& output) {
  ++output.edid_reads;
  request_result_t result;
  result.story = output_name(model, output) + ": EDID read, " + std::to_string(output.edid.size()) + " bytes";
  if (const auto connector = model.connector(output.resource.id)) {
    result.published = {{hdmi_property(*connector, "edid_reads"), std::to_string(output.edid_reads)}};
  }
  return result;
}

request_result_t read_edid(streamer_model_t& model, std::span<uint8_t> record, const client_writer_t& write) {
  auto asked = load<vgn::edid_record_t>(record);
  output_t* output = model.find_output(asked.id);
  if (output == nullptr || !output->connected) {
    return failure(output == nullptr ? EINVAL : ENXIO);
  }
  const bool only_size = asked.bytes == 0;
  const std::span<const uint8_t> edid(output->edid);
  if (!only_size) {
    const auto fitting = edid.first(std::min<size_t>(asked.size, edid.size()));
    if (!fitting.empty() && !write(offsetof(vgn::edid_record_t, bytes), fitting)) {
      return failure(EFAULT);
    }
    asked.size = fitting.size();
  } else {
    asked.size = edid.size();
  }
  store(asked, record);
  return only_size && !edid.empty() ? request_result_t{} : edid_was_read(model, *output);
}

request_result_t set_timing(streamer_model_t& model, std::span<uint8_t> record, const client_writer_t& /*write*/) {
  const auto asked = load<vgn::timing_record_t>(record);
  output_t* output = model.find_output(asked.id);
  if (output == nullptr) {
    return failure(EINVAL);
  }
  output->programmed.timing = asked.timing;
  return changed(model, *output, "timing",
                 "timing " + std::to_string(asked.timing.h_active) + "x" + std::to_string(asked.timing.v_active) +
                     ", " + std::to_string(asked.timing.pixel_clock_khz) + " kHz");
}

request_result_t set_audio_clock(streamer_model_t& model, std::span<uint8_t> record, const client_writer_t& /*write*/) {
  const auto asked = load<vgn::audio_record_t>(record);
  output_t* output = model.find_output(asked.id);
  if (output == nullptr) {
    return failure(EINVAL);
  }
  output->programmed.audio = asked;
  return changed(model, *output, "audio", "audio clock a, cts, q " + audio_text(asked));
}

request_result_t set_source(streamer_model_t& model, std::span<uint8_t> record, const client_writer_t& /*write*/) {
  const auto asked = load<vgn::source_record_t>(record);
  const streamer_input_t* input = model.find_input(asked.input_id);
  output_t* output = model.find_output(asked.output_id);
  if (input == nullptr || output == nullptr || asked.hw != input->resource.hw) {
    return failure(EINVAL);
  }
  output->programmed.source = asked.input_id;
  return changed(model, *output, "source", "source " + source_name(model, *output));
}

// To remove what is not routed is no failure: clients clear all pairs to start from a known state.
request_result_t remove_source(streamer_model_t& model, std::span<uint8_t> record, const client_writer_t& /*write*/) {
  const auto asked = load<vgn::source_record_t>(record);
  output_t* output = model.find_output(asked.output_id);
  if (model.find_input(asked.input_id) == nullptr || output == nullptr) {
    return failure(EINVAL);
  }
  if (output->programmed.source != asked.input_id) {
    return {};
  }
  const std::string name = source_name(model, *output);
  output->programmed.source.reset();
  return changed(model, *output, "source", "source " + name + " removed");
}

request_result_t set_flag(streamer_model_t& model, std::span<uint8_t> record, bool output_t::programmed_t::*flag,
                          const std::string& property) {
  const auto asked = load<vgn::value_record_t>(record);
  output_t* output = model.find_output(asked.id);
  if (output == nullptr) {
    return failure(EINVAL);
  }
  output->programmed.*flag = asked.value != 0;
  return changed(model, *output, property, property + (asked.value != 0 ? ": yes" : ": no"));
}

request_result_t set_mute(streamer_model_t& model, std::span<uint8_t> record, const client_writer_t& /*write*/) {
  return set_flag(model, record, &output_t::programmed_t::muted, "muted");
}

request_result_t set_freeze(streamer_model_t& model, std::span<uint8_t> record, const client_writer_t& /*write*/) {
  return set_flag(model, record, &output_t::programmed_t::frozen, "frozen");
}

request_result_t tell_output_connected(streamer_model_t& model, std::span<uint8_t> record,
                                       const client_writer_t& /*write*/) {
  auto asked = load<vgn::value_record_t>(record);
  const output_t* output = model.find_output(asked.id);
  if (output == nullptr) {
    return failure(EINVAL);
  }
  asked.value = output->connected ? 1 : 0;
  store(asked, record);
  return {};
}

request_result_t tell_input_connected(streamer_model_t& model, std::span<uint8_t> record,
                                      const client_writer_t& /*write*/) {
  auto asked = load<vgn::value_record_t>(record);
  const streamer_input_t* input = model.find_input(asked.id);
  if (input == nullptr) {
    return failure(EINVAL);
  }
  asked.value = input->connected ? 1 : 0;
  store(asked, record);
  return {};
}

// Nothing plays into the inputs: no audio channels, no active audio.
request_result_t tell_input_audio(streamer_model_t& model, std::span<uint8_t> record,
                                  const client_writer_t& /*write*/) {
  auto asked = load<vgn::value_record_t>(record);
  if (model.find_input(asked.id) == nullptr) {
    return failure(EINVAL);
  }
  asked.value = 0;
  store(asked, record);
  return {};
}

request_result_t tell_hdcp(streamer_model_t& model, std::span<uint8_t> record, const client_writer_t& /*write*/) {
  auto asked = load<vgn::hdcp_record_t>(record);
  if (model.find_input(asked.id) == nullptr && model.find_output(asked.id) == nullptr) {
    return failure(EINVAL);
  }
  asked.authentication = static_cast<uint32_t>(vgn::hdcp_auth_e::off);
  asked.encryption = static_cast<uint32_t>(vgn::hdcp_enc_e::off);
  store(asked, record);
  return {};
}

const std::map<uint32_t, handler_t>& handlers() {
  static const std::map<uint32_t, handler_t> known{
      {vgn::resources_request, list_resources},
      {vgn::input_request, tell_input},
      {vgn::output_request, tell_output},
      {vgn::read_edid_request, read_edid},
      {vgn::set_timing_request, set_timing},
      {vgn::hdcp_status_request, tell_hdcp},
      {vgn::set_output_source_request, set_source},
      {vgn::remove_output_source_request, remove_source},
      {vgn::input_connected_request, tell_input_connected},
      {vgn::output_connected_request, tell_output_connected},
      {vgn::audio_channels_request, tell_input_audio},
      {vgn::set_audio_clock_request, set_audio_clock},
      {vgn::active_audio_request, tell_input_audio},
      {vgn::set_output_mute_request, set_mute},
      {vgn::set_output_freeze_request, set_freeze},
  };
  return known;
}

request_result_t unknown_request(uint32_t request) {
  char number[16];
  std::snprintf(number, sizeof number, "0x%08X", request);
  request_result_t result = failure(ENOTTY);
  result.story = std::string("request ") + number + " is not known";
  return result;
}

}  // namespace

request_result_t answer_streamer_request(streamer_model_t& model, uint32_t request, std::span<uint8_t> record,
                                         const client_writer_t& write) {
  const auto found = handlers().find(request);
  return found != handlers().end() ? found->second(model, record, write) : unknown_request(request);
}

std::string hdmi_property(size_t connector, const std::string& name) {
  return "/sim/hdmi/" + std::to_string(connector) + "/" + name;
}

std::vector<std::pair<std::string, std::string>> programmed_properties(const streamer_model_t& model,
                                                                       size_t connector) {
  const output_t& output = model.outputs()[connector];
  const output_t::programmed_t& programmed = output.programmed;
  return {{hdmi_property(connector, "timing"), programmed.timing ? timing_text(*programmed.timing) : ""},
          {hdmi_property(connector, "audio"), programmed.audio ? audio_text(*programmed.audio) : ""},
          {hdmi_property(connector, "source"), source_name(model, output)},
          {hdmi_property(connector, "muted"), programmed.muted ? "1" : "0"},
          {hdmi_property(connector, "frozen"), programmed.frozen ? "1" : "0"}};
}

}  // namespace sim
