#include "sim/ktm5030.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <sstream>
#include <utility>

#include "zyl/post.h"

namespace sim {
namespace {

constexpr uint32_t read_mode_request = 0xC0014B01;
constexpr uint32_t write_mode_request = 0x40014B02;
constexpr uint32_t read_info_request = 0xC00C4B00;

/// The number that the whole text is.
template <typename number_t>
std::optional<number_t> number_in(const std::string& text) {
  number_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
}

std::optional<std::array<uint32_t, 3>> words_in(const std::string& text) {
  std::istringstream stream(text);
  std::array<uint32_t, 3> words{};
  std::string word;
  for (uint32_t& value : words) {
    stream >> word;
    const auto number = number_in<uint32_t>(stream ? word : "");
    if (!number) {
      return std::nullopt;
    }
    value = *number;
  }
  return stream >> word ? std::nullopt : std::optional(words);
}

}  // namespace

ktm5030_t::ktm5030_t(event_base* loop, testbed_t& bed, property_tree_t& properties, story_t& told, bool is_present)
    : base(loop), testbed(bed), tree(properties), story(told), alive(std::make_shared<ktm5030_t*>(this)) {
  tree.on_set("/sim/ktm5030/device", [this](const std::string& value) {
    if (value == "present" || value == "absent") {
      set_present(value == "present");
    }
    publish();
  });
  tree.on_set("/sim/ktm5030/mode", [this](const std::string& value) { set_mode(value); });
  tree.on_set("/sim/ktm5030/info", [this](const std::string& value) { set_info(value); });
  tree.on_set("/sim/ktm5030/event", [this](const std::string& value) { raise_event(value); });
  set_present(is_present);
  tree.publish("/sim/ktm5030/event", "");
  publish();
}

ktm5030_t::~ktm5030_t() {
  node.reset();
  alive.reset();
}

// The node is made once: who has it open when it goes meets the device again when it is back.
void ktm5030_t::set_present(bool wanted) {
  if (wanted == present) {
    return;
  }
  present = wanted;
  story.tell("hardware", wanted ? "ktm5030 added" : "ktm5030 removed");
  if (node) {
    node->set_present(wanted);
    return;
  }
  device_calls_t calls;
  calls.request = [this](uint32_t request, std::span<uint8_t> record, const client_writer_t& /*write*/) {
    return answer(request, record);
  };
  calls.keeps_records = true;
  node.emplace(testbed, "ktm5030", "ktm5030", std::move(calls));
}

void ktm5030_t::set_mode(const std::string& text) {
  if (const auto number = number_in<uint8_t>(text)) {
    const zyl::lock_t lock(mutex);
    mode = *number;
  }
  publish();
}

void ktm5030_t::set_info(const std::string& text) {
  if (const auto words = words_in(text)) {
    const zyl::lock_t lock(mutex);
    info = *words;
  }
  publish();
}

void ktm5030_t::raise_event(const std::string& text) {
  const auto code = number_in<uint32_t>(text);
  if (!code || !present) {
    return;
  }
  uint8_t bytes[sizeof *code];
  std::memcpy(bytes, &*code, sizeof *code);
  story.tell("hardware", "ktm5030 event " + text);
  node->feed(bytes);
}

void ktm5030_t::publish() {
  std::string byte;
  std::string words;
  {
    const zyl::lock_t lock(mutex);
    byte = std::to_string(mode);
    words = std::to_string(info[0]) + ' ' + std::to_string(info[1]) + ' ' + std::to_string(info[2]);
  }
  tree.publish("/sim/ktm5030/device", present ? "present" : "absent");
  tree.publish("/sim/ktm5030/mode", byte);
  tree.publish("/sim/ktm5030/info", words);
}

int ktm5030_t::answer(uint32_t request, std::span<uint8_t> record) {
  const zyl::lock_t lock(mutex);
  switch (request) {
    case read_mode_request:
      record[0] = mode;
      return 0;
    case write_mode_request:
      return take_mode(record[0]);
    case read_info_request:
      std::memcpy(record.data(), info.data(), sizeof info);
      return 0;
    default:
      return ENOTTY;
  }
}

int ktm5030_t::take_mode(uint8_t byte) {
  mode = byte;
  story.tell("hardware", "ktm5030 mode " + std::to_string(byte));
  const std::weak_ptr<ktm5030_t*> self = alive;
  zyl::post(base, [self] {
    if (const auto device = self.lock()) {
      (*device)->publish();
    }
  });
  return 0;
}

}  // namespace sim
