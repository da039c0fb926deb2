#include "sim/streamer_driver.h"

#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "zyl/post.h"

namespace sim {
namespace {

std::optional<std::vector<uint8_t>> read_file(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  // A folder opens as well and throws when it is read.
  if (!file.is_open() || std::filesystem::is_directory(path)) {
    return std::nullopt;
  }
  return std::vector<uint8_t>{std::istreambuf_iterator<char>(file), {}};
}

const char* event_word(vgn::link_event_e type) {
  return type == vgn::link_event_e::output_connection ? "output_connection" : "output_disconnection";
}

}  // namespace

streamer_driver_t::streamer_driver_t(event_base* loop, testbed_t& bed, property_tree_t& properties, story_t& told,
                                     size_t hdmi_output_count)
    : base(loop),
      testbed(bed),
      tree(properties),
      story(told),
      model(hdmi_output_count),
      alive(std::make_shared<streamer_driver_t*>(this)) {
  for (size_t n = 0; n < hdmi_output_count; ++n) {
    tree.publish(hdmi_property(n, "edid"), "");
    tree.on_set(hdmi_property(n, "edid"), [this, n](const std::string& path) { plug_file(n, path); });
  }
  tree.on_set("/sim/streamer/present", [this](const std::string& value) { set_present(value == "1"); });
  tree.publish("/sim/streamer/open", "0");
  publish(state());
  set_present(true);
}

streamer_driver_t::~streamer_driver_t() {
  node.reset();
  alive.reset();
}

void streamer_driver_t::set_present(bool present) {
  if (present != node.has_value()) {
    present ? add_device() : remove_device();
  }
  tree.publish("/sim/streamer/present", present ? "1" : "0");
}

void streamer_driver_t::add_device() {
  const std::string name = "vgnsys-" + std::to_string(next_number++);
  story.tell("driver", "device " + name + " added");
  device_calls_t calls;
  calls.request = [this](uint32_t request, std::span<uint8_t> record, const client_writer_t& write) {
    return answer(request, record, write);
  };
  calls.opened = [this](bool open) { note_open(open); };
  node.emplace(testbed, "misc", name, std::move(calls));
}

void streamer_driver_t::remove_device() {
  story.tell("driver", "device removed");
  node.reset();
  {
    const zyl::lock_t lock(mutex);
    model.reset_outputs();
  }
  // Behind what the requests before the removal have still to publish.
  publish_later({{"/sim/streamer/open", "0"}});
  publish_later(state());
}

void streamer_driver_t::plug(size_t connector, std::vector<uint8_t> edid) {
  if (tree.value(hdmi_property(connector, "connected")) == "1") {
    unplug(connector);
  }
  story.tell("driver", "output " + std::to_string(connector) + ": display plugged, EDID of " +
                           std::to_string(edid.size()) + " bytes");
  set_connected(connector, true, std::move(edid));
}

void streamer_driver_t::unplug(size_t connector) {
  story.tell("driver", "output " + std::to_string(connector) + ": display unplugged");
  set_connected(connector, false, {});
}

void streamer_driver_t::plug_file(size_t connector, const std::string& path) {
  if (path.empty()) {
    if (tree.value(hdmi_property(connector, "connected")) == "1") {
      unplug(connector);
    }
    return;
  }
  auto edid = read_file(path);
  if (!edid) {
    story.tell("driver", "output " + std::to_string(connector) + ": " + path + " cannot be read");
    return;
  }
  plug(connector, std::move(*edid));
}

void streamer_driver_t::set_connected(size_t connector, bool connected, std::vector<uint8_t> edid) {
  uint32_t id = 0;
  {
    const zyl::lock_t lock(mutex);
    streamer_output_t& output = model.hdmi_output(connector);
    output.connected = connected;
    output.edid = std::move(edid);
    id = output.resource.id;
  }
  tree.publish(hdmi_property(connector, "connected"), connected ? "1" : "0");
  raise_event(connected ? vgn::link_event_e::output_connection : vgn::link_event_e::output_disconnection, id);
}

void streamer_driver_t::raise_event(vgn::link_event_e type, uint32_t id) {
  if (!node) {
    return;
  }
  const vgn::vgn_event_t event{static_cast<uint32_t>(type), id};
  uint8_t bytes[sizeof event];
  std::memcpy(bytes, &event, sizeof event);
  story.tell("driver", std::string("link event ") + event_word(type) + ", id " + std::to_string(id));
  node->feed(bytes);
}

streamer_driver_t::properties_t streamer_driver_t::state() {
  properties_t published;
  const zyl::lock_t lock(mutex);
  for (size_t n = 0; n < model.hdmi_output_count(); ++n) {
    published.emplace_back(hdmi_property(n, "connected"), model.hdmi_output(n).connected ? "1" : "0");
    published.emplace_back(hdmi_property(n, "edid_reads"), std::to_string(model.hdmi_output(n).edid_reads));
    const properties_t programmed = programmed_properties(model, n);
    published.insert(published.end(), programmed.begin(), programmed.end());
  }
  return published;
}

void streamer_driver_t::publish(const properties_t& published) {
  for (const auto& [path, value] : published) {
    tree.publish(path, value);
  }
}

int streamer_driver_t::answer(uint32_t request, std::span<uint8_t> record, const client_writer_t& write) {
  const zyl::lock_t lock(mutex);
  request_result_t result = answer_streamer_request(model, request, record, write);
  if (!result.story.empty()) {
    story.tell("driver", result.story);
  }
  if (!result.published.empty()) {
    publish_later(std::move(result.published));
  }
  return result.error;
}

void streamer_driver_t::note_open(bool open) {
  story.tell("driver", open ? "node opened" : "node closed");
  publish_later({{"/sim/streamer/open", open ? "1" : "0"}});
}

void streamer_driver_t::publish_later(properties_t published) {
  const std::weak_ptr<streamer_driver_t*> self = alive;
  zyl::post(base, [self, published = std::move(published)] {
    if (const auto driver = self.lock()) {
      (*driver)->publish(published);
    }
  });
}

}  // namespace sim
