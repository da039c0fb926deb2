// The interface learns and forgets the resources of a streamer device, and hears its link events.
#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include "control_lib/src/vgn_zsd_interface.h"
#include "control_lib/src/vgn_zsd_words.h"
#include "zyl/log/module_logger.h"

static auto& module_log = zyl::module_logger("vgn_operatives");
#include "zyl/log/log_bind.h"

namespace control_lib {
namespace {

// Capture outputs say their place in their names; no device has nearly as many.
constexpr size_t max_capture_outputs = 64;

constexpr uint32_t all_bits = 0xFFFFFF;

std::string list_of(const std::vector<uint32_t>& ids) {
  std::string text = "[";
  for (const uint32_t id : ids) {
    text.append(text.size() > 1 ? ", " : "").append(std::to_string(id));
  }
  return text + "]";
}

template <typename Resource>
void append(std::vector<Resource*>& resources, Resource& resource) {
  resource.index = static_cast<int>(resources.size());
  resources.push_back(&resource);
}

// The number behind `prefix`; nothing for another name, and for a number that no device has.
std::optional<size_t> number_behind(std::string_view name, std::string_view prefix) {
  if (!name.starts_with(prefix)) {
    return std::nullopt;
  }
  size_t number = 0;
  const auto result = std::from_chars(name.data() + prefix.size(), name.data() + name.size(), number);
  return result.ec == std::errc() && number < max_capture_outputs ? std::optional(number) : std::nullopt;
}

// Puts the output where its name says. False if the name says nothing, or another output is there already.
bool place_at_number(std::vector<vgn_output_t*>& list, vgn_output_t& output, std::string_view prefix) {
  const auto number = number_behind(output.name, prefix);
  if (!number) {
    return false;
  }
  if (list.size() <= *number) {
    list.resize(*number + 1);
  }
  if (list[*number] != nullptr) {
    return false;
  }
  output.index = static_cast<int>(*number);
  list[*number] = &output;
  return true;
}

template <typename Resources>
void print_list(const char* name, const Resources& resources) {
  for (size_t position = 0; position < resources.size(); ++position) {
    if (const auto* const resource = resources[position]; resource != nullptr) {
      log_info_s() << name << "[" << position << "] name=\"" << resource->name << "\" index=" << resource->index
                   << " id=" << resource->id;
    }
  }
}

// The bits of an input's or output's event for a link event; 0 where the event only tells.
uint32_t bits_of(vgn::link_event_e type) {
  switch (type) {
    case vgn::link_event_e::input_streamup:
      return input_streamup_event;
    case vgn::link_event_e::input_streamdown:
      return input_streamdown_event;
    case vgn::link_event_e::input_avi_infoframe:
      return input_avi_infoframe_event;
    case vgn::link_event_e::output_connection:
      return output_connection_event;
    case vgn::link_event_e::output_disconnection:
      return output_disconnection_event;
    case vgn::link_event_e::output_streamup:
      return output_streamup_event;
    case vgn::link_event_e::output_streamdown:
      return output_streamdown_event;
    default:
      return 0;
  }
}

bool is_input_event(uint32_t type) { return type <= static_cast<uint32_t>(vgn::link_event_e::input_avi_infoframe); }

bool is_output_event(uint32_t type) {
  return !is_input_event(type) && type <= static_cast<uint32_t>(vgn::link_event_e::output_streamdown);
}

}  // namespace

void vgn_zsd_interface_t::system_added(vgn::system_t& added) {
  log_info_s() << "system_added(" << added.node() << ")";
  if (system != nullptr) {
    log_info_s() << "system_added called again without sytem_removed";
    return;
  }
  system = &added;
  std::vector<uint32_t> input_ids;
  std::vector<uint32_t> output_ids;
  if (!system->get_resources(input_ids, output_ids)) {
    log_error_s() << "get_resources failed!";
  }
  log_info_s() << "get_resources() => input_ids=" << list_of(input_ids) << " output_ids=" << list_of(output_ids);
  for (const uint32_t id : input_ids) {
    add_input(id);
  }
  for (const uint32_t id : output_ids) {
    add_output(id);
  }
  mux_logic->init(*this);
  print_resources();
  remove_all_sources();
  init_input_poll_state(-1, all_bits);
  init_output_poll_state(-1, all_bits);
  poll_timer.arm();
  is_active = true;
  started_signal.emit();
}

void vgn_zsd_interface_t::system_removed(vgn::system_t& removed) {
  log_info_s() << "vgn_zsd_interface_t::system_removed(" << removed.node() << ")";
  release_resources();
}

void vgn_zsd_interface_t::add_input(uint32_t id) {
  vgn::resource_t resource;
  if (!system->get_input(id, resource)) {
    log_error_s() << "get_input(" << id << ") failed";
    return;
  }
  log_debug_s() << "get_input(" << id << ") => " << resource.name << " " << input_kind_word(resource.kind);
  auto& input = *inputs.emplace_back(std::make_unique<vgn_input_t>());
  input.name = std::move(resource.name);
  input.kind = resource.kind;
  input.id = id;
  input.hw_source = resource.hw_source;
  if (auto* const kin = inputs_of_kind(resource.kind); kin != nullptr) {
    append(*kin, input);
  } else {
    log_info_s() << "Skipping input " << input.name;
  }
}

vgn_zsd_interface_t::inputs_t* vgn_zsd_interface_t::inputs_of_kind(uint32_t kind) {
  switch (static_cast<vgn::input_kind_e>(kind)) {
    case vgn::input_kind_e::hdmi_in:
    case vgn::input_kind_e::hdmi_mux_in:
      return &hdmi_inputs;
    case vgn::input_kind_e::inject:
      return &inject_inputs;
    case vgn::input_kind_e::decoder:
      return &decoder_inputs;
    case vgn::input_kind_e::mediacast:
      return &mediacast_inputs;
    case vgn::input_kind_e::lbr_v4l2:
      return &v4l2_inputs;
    default:
      return nullptr;
  }
}

void vgn_zsd_interface_t::add_output(uint32_t id) {
  vgn::resource_t resource;
  if (!system->get_output(id, resource)) {
    log_error_s() << "get_output(" << id << ") failed";
    return;
  }
  log_debug_s() << "get_output(" << id << ") => " << resource.name << " " << output_kind_word(resource.kind);
  auto& output = *outputs.emplace_back(std::make_unique<vgn_output_t>());
  output.name = std::move(resource.name);
  output.kind = resource.kind;
  output.id = id;
  switch (static_cast<vgn::output_kind_e>(resource.kind)) {
    case vgn::output_kind_e::hdmi_out:
      append(hdmi_outputs, output);
      break;
    case vgn::output_kind_e::capture:
      if (!place_at_number(capture_outputs, output, "frame_capture_out_") &&
          !place_at_number(v4l2_outputs, output, "frame_capture_v4l2_out_")) {
        log_info_s() << "Unknown capture output: " << output.name;
      }
      break;
    default:
      log_info_s() << "Skipping output " << output.name;
      break;
  }
}

void vgn_zsd_interface_t::print_resources() const {
  print_list("hdmi_inputs", hdmi_inputs);
  print_list("decoder_inputs", decoder_inputs);
  print_list("inject_inputs", inject_inputs);
  print_list("mediacast_inputs", mediacast_inputs);
  print_list("v4l2_inputs", v4l2_inputs);
  print_list("hdmi_outputs", hdmi_outputs);
  print_list("capture_outputs", capture_outputs);
  print_list("v4l2_outputs", v4l2_outputs);
}

// A daemon that ran before us may have left routes. The driver refuses to remove one that is not there; no matter.
void vgn_zsd_interface_t::remove_all_sources() {
  for (const auto& output : outputs) {
    for (const auto& input : inputs) {
      system->clear_output_source(output->id, input->id, input->hw_source);
    }
  }
}

void vgn_zsd_interface_t::release_resources() {
  is_active = false;
  poll_timer.cancel();
  system = nullptr;
  for (auto* const list : {&hdmi_inputs, &decoder_inputs, &inject_inputs, &mediacast_inputs, &v4l2_inputs}) {
    list->clear();
  }
  for (auto* const list : {&hdmi_outputs, &capture_outputs, &v4l2_outputs}) {
    list->clear();
  }
  outputs.clear();
  inputs.clear();
}

void vgn_zsd_interface_t::link_changed(uint32_t id, uint32_t type) {
  auto* const input = is_input_event(type) ? find_input(id) : nullptr;
  auto* const output = is_output_event(type) ? find_output(id) : nullptr;
  {
    log_info_s line;
    line << "vgn_zsd_interface_t::link_changed(id=" << id << ", type=" << link_event_word(type);
    if (input == nullptr && output == nullptr) {
      line << " ignoring";
    } else {
      line << " observers=" << (input != nullptr ? input->events.size() : output->events.size());
    }
  }
  const uint32_t bits = bits_of(static_cast<vgn::link_event_e>(type));
  if (bits == 0) {
    return;
  }
  if (input != nullptr) {
    raise_input(*input, bits, false);
  } else if (output != nullptr) {
    raise_output(*output, bits);
  }
}

}  // namespace control_lib
