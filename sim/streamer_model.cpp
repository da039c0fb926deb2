#include "sim/streamer_model.h"

#include <algorithm>
#include <cstring>

namespace sim {
namespace {

constexpr uint32_t first_hdmi_input_id = 4;
constexpr uint32_t first_decoder_id = 8;
constexpr uint32_t encoder_id = 12;
constexpr uint32_t first_hdmi_output_id = 16;
constexpr uint32_t capture_id = 24;
constexpr uint32_t v4l2_capture_id = 25;

// Two pictures can be injected whatever the number of connectors: the video engine has two raw outputs.
constexpr uint32_t inject_count = 2;
constexpr uint32_t hdmi_input_count = 2;
constexpr uint32_t decoder_count = 2;

vgn::resource_record_t resource(uint32_t id, const std::string& name, uint32_t kind, uint32_t hw) {
  vgn::resource_record_t record{id, {}, kind, hw};
  std::memcpy(record.name, name.data(), std::min(name.size(), sizeof record.name));
  return record;
}

streamer_input_t input(uint32_t id, const std::string& name, vgn::input_kind_e kind, uint32_t hw) {
  return {resource(id, name, static_cast<uint32_t>(kind), hw)};
}

streamer_output_t output(uint32_t id, const std::string& name, vgn::output_kind_e kind) {
  streamer_output_t made;
  made.resource = resource(id, name, static_cast<uint32_t>(kind), 0);
  return made;
}

std::vector<streamer_input_t> make_inputs() {
  std::vector<streamer_input_t> made;
  for (uint32_t n = 0; n < inject_count; ++n) {
    made.push_back(input(n, "zvid-raw-frame_inject_in_" + std::to_string(n), vgn::input_kind_e::inject, 32 + n));
  }
  for (uint32_t n = 0; n < hdmi_input_count; ++n) {
    made.push_back(input(first_hdmi_input_id + n, "hdmi_in_" + std::to_string(n), vgn::input_kind_e::hdmi_in, 1 + n));
  }
  for (uint32_t n = 0; n < decoder_count; ++n) {
    made.push_back(input(first_decoder_id + n, "decoder_in_" + std::to_string(n), vgn::input_kind_e::decoder, 16 + n));
  }
  made.push_back(input(encoder_id, "encoder_in_0", vgn::input_kind_e::encoder, 48));
  return made;
}

std::vector<streamer_output_t> make_outputs(size_t hdmi_outputs) {
  std::vector<streamer_output_t> made;
  for (uint32_t n = 0; n < hdmi_outputs; ++n) {
    made.push_back(output(first_hdmi_output_id + n, "hdmi_out_" + std::to_string(n), vgn::output_kind_e::hdmi_out));
  }
  made.push_back(output(capture_id, "frame_capture_out_0", vgn::output_kind_e::capture));
  made.push_back(output(v4l2_capture_id, "frame_capture_v4l2_out_0", vgn::output_kind_e::capture));
  return made;
}

}  // namespace

streamer_model_t::streamer_model_t(size_t hdmi_output_count)
    : hdmi_outputs(hdmi_output_count), input_list(make_inputs()), output_list(make_outputs(hdmi_output_count)) {}

const streamer_input_t* streamer_model_t::find_input(uint32_t id) const {
  const auto found = std::find_if(input_list.begin(), input_list.end(),
                                  [id](const streamer_input_t& candidate) { return candidate.resource.id == id; });
  return found != input_list.end() ? &*found : nullptr;
}

streamer_output_t* streamer_model_t::find_output(uint32_t id) {
  const auto found = std::find_if(output_list.begin(), output_list.end(),
                                  [id](const streamer_output_t& candidate) { return candidate.resource.id == id; });
  return found != output_list.end() ? &*found : nullptr;
}

std::optional<size_t> streamer_model_t::connector(uint32_t output_id) const {
  for (size_t n = 0; n < hdmi_outputs; ++n) {
    if (output_list[n].resource.id == output_id) {
      return n;
    }
  }
  return std::nullopt;
}

void streamer_model_t::reset_outputs() {
  for (streamer_output_t& known : output_list) {
    known.programmed = {};
  }
}

std::string resource_name(const vgn::resource_record_t& resource) {
  return {resource.name, strnlen(resource.name, sizeof resource.name)};
}

}  // namespace sim
