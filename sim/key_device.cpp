#include "sim/key_device.h"

#include <linux/input.h>
#include <sys/time.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include "sim/key_events.h"
#include "zyl/post.h"

namespace sim {
namespace {

struct key_t {
  const char* name;
  uint16_t code;
};
constexpr std::array<key_t, 2> keys{{{"id", KEY_F1}, {"reset", KEY_F2}}};

const char* told(key_action_e action) {
  switch (action) {
    case key_action_e::press:
      return " key pressed";
    case key_action_e::repeat:
      return " key repeats";
    default:
      return " key released";
  }
}

template <typename T>
T value_of(std::span<const uint8_t> record) {
  T value{};
  std::memcpy(&value, record.data(), std::min(sizeof value, record.size()));
  return value;
}

timeval time_of_day() {
  timeval now{};
  gettimeofday(&now, nullptr);
  return now;
}

}  // namespace

key_device_t::key_device_t(event_base* loop, testbed_t& bed, property_tree_t& properties, story_t& told_story)
    : base(loop), testbed(bed), tree(properties), story(told_story), alive(std::make_shared<key_device_t*>(this)) {
  for (const auto& key : keys) {
    const std::string property = std::string("/sim/key/") + key.name;
    tree.publish(property, "release");
    tree.on_set(property, [this, key](const std::string& word) { act(key.name, key.code, word); });
  }
  tree.publish("/sim/key/bytes", "");
  tree.on_set("/sim/key/bytes", [this](const std::string& hex) { feed(hex); });
  tree.on_set("/sim/key/device", [this](const std::string& wanted) { set_device(wanted); });
  tree.publish("/sim/key/device", device);
  tree.publish("/sim/key/path", path);
  tree.publish("/sim/key/open", "0");
  tree.publish("/sim/key/grab", "");
  tree.publish("/sim/key/repeat", "");
  add_node();
}

key_device_t::~key_device_t() {
  node.reset();
  pulled_out.clear();
  alive.reset();
}

void key_device_t::add_node() {
  device_calls_t calls;
  calls.request = [this](uint32_t request, std::span<uint8_t> record, const client_writer_t& /*write*/) {
    return answer(request, record);
  };
  const auto grab_holder = std::make_shared<client_id_t>(nullptr);
  calls.value_requests = {EVIOCGRAB};
  calls.value_request = [this, grab_holder](uint32_t /*request*/, std::span<const uint8_t> value, client_id_t client) {
    return answer_grab(*grab_holder, value_of<int32_t>(value) != 0, client);
  };
  calls.closed = [grab_holder](client_id_t client) {
    if (*grab_holder == client) {
      *grab_holder = nullptr;
    }
  };
  calls.opened = [this](bool /*open*/) { call_later([](key_device_t& self) { self.note_open(); }); };
  node = std::make_unique<device_node_t>(testbed, "input", "event0", std::move(calls), "input/");
}

void key_device_t::note_open() {
  std::erase_if(pulled_out, [](const auto& old) { return !old->is_open(); });
  tree.publish("/sim/key/open", !pulled_out.empty() || (node && node->is_open()) ? "1" : "0");
}

void key_device_t::set_device(const std::string& wanted) {
  if (wanted == "present" || wanted == "gone" || wanted == "ended") {
    story.tell("panel", "key device ", {wanted});
    device = wanted;
    apply(wanted);
  } else {
    story.tell("panel", "key device cannot be \"", {wanted, "\""});
    tree.publish("/sim/key/device", device);
  }
}

void key_device_t::apply(const std::string& wanted) {
  if (wanted == "gone") {
    if (node) {
      node->pull_out();
      pulled_out.push_back(std::move(node));
    }
    note_open();
    return;
  }
  if (!node) {
    add_node();
  }
  node->end_reads(wanted == "ended");
}

void key_device_t::act(const std::string& key, uint16_t code, const std::string& word) {
  const auto action = parse_key_action(word);
  if (!action) {
    story.tell("panel", key, {" key cannot \"", word, "\""});
    return;
  }
  story.tell("panel", key, {told(*action)});
  if (node) {
    const auto report = key_report(code, *action, time_of_day());
    node->feed({reinterpret_cast<const uint8_t*>(report.data()), sizeof report});
  }
}

void key_device_t::feed(const std::string& hex) {
  const auto bytes = parse_hex(hex);
  if (!bytes) {
    story.tell("panel", "no bytes in hex: ", {hex});
    return;
  }
  story.tell("panel", "key device gives " + std::to_string(bytes->size()) + " bytes");
  constexpr std::size_t most_bytes = 32 * sizeof(input_event);
  for (std::span<const uint8_t> rest(*bytes); node && !rest.empty();) {
    const std::size_t size = std::min(rest.size(), most_bytes);
    node->feed(rest.first(size));
    rest = rest.subspan(size);
  }
}

int key_device_t::answer_grab(client_id_t& holder, bool wanted, client_id_t client) {
  publish_later("/sim/key/grab", wanted ? "1" : "0");
  if (wanted) {
    if (holder != nullptr) {
      return EBUSY;
    }
    holder = client;
    return 0;
  }
  if (holder != client) {
    return EINVAL;
  }
  holder = nullptr;
  return 0;
}

int key_device_t::answer(uint32_t request, std::span<const uint8_t> record) {
  if (request == EVIOCSREP) {
    const auto [delay_ms, period_ms] = value_of<std::array<uint32_t, 2>>(record);
    publish_later("/sim/key/repeat", std::to_string(delay_ms) + " " + std::to_string(period_ms));
    return 0;
  }
  return ENOTTY;
}

void key_device_t::publish_later(const std::string& property, const std::string& value) {
  call_later([property, value](key_device_t& self) { self.tree.publish(property, value); });
}

void key_device_t::call_later(std::function<void(key_device_t& self)> call) {
  const std::weak_ptr<key_device_t*> self = alive;
  zyl::post(base, [self, call = std::move(call)] {
    if (const auto owner = self.lock()) {
      call(**owner);
    }
  });
}

}  // namespace sim
