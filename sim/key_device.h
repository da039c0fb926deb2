#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "sim/device_node.h"
#include "sim/property_tree.h"
#include "sim/story.h"
#include "sim/testbed.h"

struct event_base;

namespace sim {

/// The two keys of the front panel: an evdev device in a testbed. Loop thread only.
///
/// Properties:
///   "/sim/key/id"      set it to "press", "repeat" or "release": an event of KEY_F1 and the EV_SYN event behind it. A
///                      key that is held does not repeat by itself
///   "/sim/key/reset"   the same with KEY_F2
///   "/sim/key/bytes"   set it to hex digits: a read that gives these bytes, whatever they mean; one read for each 768,
///                      which is 32 events
///   "/sim/key/device"  set it to "present"; "gone", as if pulled out: reads fail with ENODEV; or "ended": reads give
///                      end of file, once for each time that it is set and each event that comes meanwhile
///   "/sim/key/path"    the device's path
///   "/sim/key/open"    "1" while a program has it open, or one that was pulled out; events that come while none has
///                      it open are lost
///   "/sim/key/grab"    what the last EVIOCGRAB asked for, "0" or "1". As in the kernel it fails with EBUSY if somebody
///                      holds a grab, and with EINVAL if he who gives it up holds none
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
  void apply(const std::string& wanted);
  void add_node();
  void note_open();
  void act(const std::string& key, uint16_t code, const std::string& word);
  void feed(const std::string& hex);

  // On the testbed's thread.
  int answer(uint32_t request, std::span<const uint8_t> record);
  int answer_grab(client_id_t& holder, bool wanted, client_id_t client);
  void publish_later(const std::string& property, const std::string& value);
  void call_later(std::function<void(key_device_t& self)> call);

  event_base* base;
  testbed_t& testbed;
  property_tree_t& tree;
  story_t& story;
  /// Dies with this object; what waits on the loop from the testbed's thread asks for it.
  std::shared_ptr<key_device_t*> alive;
  std::string device = "present";
  std::unique_ptr<device_node_t> node;
  /// Programs may still have one of these open.
  std::vector<std::unique_ptr<device_node_t>> pulled_out;
};

}  // namespace sim
