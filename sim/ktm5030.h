#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

#include "sim/device_node.h"
#include "sim/property_tree.h"
#include "sim/story.h"
#include "sim/testbed.h"
#include "zyl/mutex.h"

struct event_base;

namespace sim {

/// The KTM5030 behind "/dev/ktm5030". Its events wait until a program reads them, also while none has it open: programs
/// open it now and then only to look.
///
/// Properties; what does not read as described changes nothing:
///   "/sim/ktm5030/device"  "present"/"absent"; set it to add or take away the node. Taken away it loses waiting
///                          events; who has it open gets ENODEV of requests and reads until it is back
///   "/sim/ktm5030/mode"    the mode byte, 0 to 255
///   "/sim/ktm5030/info"    the three words of the info, blank separated
///   "/sim/ktm5030/event"   set it to an event code, in decimal, and the device gives that event
/// Loop thread only.
class ktm5030_t {
 public:
  /// All arguments by reference must outlive this object and the last turn of the loop.
  ktm5030_t(event_base* base, testbed_t& testbed, property_tree_t& tree, story_t& story, bool present);
  ~ktm5030_t();

  ktm5030_t(const ktm5030_t&) = delete;
  ktm5030_t& operator=(const ktm5030_t&) = delete;
  ktm5030_t(ktm5030_t&&) = delete;
  ktm5030_t& operator=(ktm5030_t&&) = delete;

 private:
  void set_present(bool wanted);
  void set_mode(const std::string& text);
  void set_info(const std::string& text);
  void raise_event(const std::string& text);
  void publish();
  /// On the testbed's thread.
  int answer(uint32_t request, std::span<uint8_t> record);
  int take_mode(uint8_t byte) ZYL_REQUIRES(mutex);

  event_base* base;
  testbed_t& testbed;
  property_tree_t& tree;
  story_t& story;
  bool present = false;
  /// Guards what requests meet, which come on the testbed's thread.
  zyl::mutex_t mutex;
  uint8_t mode ZYL_GUARDED_BY(mutex) = 0;
  std::array<uint32_t, 3> info ZYL_GUARDED_BY(mutex) = {};
  /// Posts that outlive this object find it gone.
  std::shared_ptr<ktm5030_t*> alive;
  /// From the first time on that the device is present.
  std::optional<device_node_t> node;
};

}  // namespace sim
