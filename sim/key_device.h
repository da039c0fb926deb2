#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "sim/device_node.h"
#include "sim/property_tree.h"
#include "sim/story.h"
#include "sim/testbed.h"

struct event_base;

namespace sim {

/// The two keys of the front panel: an evdev device in a testbed. Loop thread only.
///
/// Properties:
///   "/sim/key/id"      set it to "press", "repeat" or "release": an event of KEY_F1 and the EV_SYN event behind it
///   "/sim/key/reset"   the same with KEY_F2
///   "/sim/key/bytes"   set it to hex digits: a read that gives these bytes, whatever they mean
///   "/sim/key/device"  set it to "present"; "gone", as if pulled out: reads fail with ENODEV; or "ended": reads give
///                      end of file, once for each time that it is set and each event that comes meanwhile
///   "/sim/key/path"    the device's path
///   "/sim/key/open"    "1" while a program has it open; events that come while none has are lost
///   "/sim/key/grab"    what the last EVIOCGRAB asked for, "0" or "1"
///   "/sim/key/repeat"  what the last EVIOCSREP asked for, delay and period in ms: "400 80"
class key_device_t {
 public:
  static constexpr const char* path = "/dev/input/event0";

  /// All arguments by reference must outlive this object; the tree must not change once it is gone.
  key_device_t(event_base* base, testbed_t& testbed, property_tree_t& properties, story_t& story);
  ~key_device_t();

  key_device_t(const key_device_t&) = delete;
  key_device_t& operator=(const key_device_t&) = delete;
  key_device_t(key_device_t&&) = delete;
  key_device_t& operator=(key_device_t&&) = delete;

 private:
  void set_device(const std::string& wanted);
  void add_node();
  void act(const std::string& key, uint16_t code, const std::string& word);
  void feed(const std::string& hex);

  int answer(uint32_t request, std::span<const uint8_t> record);
  void publish_later(const std::string& property, const std::string& value);

  event_base* base;
  testbed_t& testbed;
  property_tree_t& tree;
  story_t& story;
  /// Dies with this object; what waits on the loop from the testbed's thread asks for it.
  std::shared_ptr<key_device_t*> alive;
  std::optional<device_node_t> node;
};

}  // namespace sim
