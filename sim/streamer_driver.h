#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "sim/device_node.h"
#include "sim/property_tree.h"
#include "sim/story.h"
#include "sim/streamer_model.h"
#include "sim/streamer_requests.h"
#include "sim/testbed.h"
#include "zyl/mutex.h"

struct event_base;

namespace sim {

/// The streamer driver as a client meets it: a misc device "vgnsys-<n>" with its requests and event records, and the
/// displays on its connectors. Every return of the device gives it the next number. Loop thread only.
///
/// Properties, `<n>` being the connector from 0:
///   "/sim/streamer/present"     "1"/"0"; set it to plug the device in or pull it out
///   "/sim/streamer/open"        "1" while a client has the node open
///   "/sim/hdmi/<n>/edid"        set to a file: plugs a display that has these bytes as EDID, of any size; to "":
///                               unplugs. A file that cannot be read changes nothing
///   "/sim/hdmi/<n>/connected"   "1"/"0"
///   "/sim/hdmi/<n>/edid_reads"  how often a client has read the EDID
///   "/sim/hdmi/<n>/timing"      the ten numbers of the timing, blank separated; "" before any
///   "/sim/hdmi/<n>/audio"       a, cts and q of the audio clock, blank separated; "" before any
///   "/sim/hdmi/<n>/source"      name of the routed input, "" for none
///   "/sim/hdmi/<n>/muted", "/sim/hdmi/<n>/frozen"  "1"/"0"
class streamer_driver_t {
 public:
  /// All arguments by reference must outlive this object and the last turn of the loop.
  streamer_driver_t(event_base* base, testbed_t& testbed, property_tree_t& properties, story_t& story,
                    size_t hdmi_output_count);
  ~streamer_driver_t();

  streamer_driver_t(const streamer_driver_t&) = delete;
  streamer_driver_t& operator=(const streamer_driver_t&) = delete;
  streamer_driver_t(streamer_driver_t&&) = delete;
  streamer_driver_t& operator=(streamer_driver_t&&) = delete;

  /// Adds the device, or removes it.
  void set_present(bool present);

  /// Plugs a display, in place of the one that is there.
  void plug(size_t connector, std::vector<uint8_t> edid);
  void unplug(size_t connector);

 private:
  using properties_t = std::vector<std::pair<std::string, std::string>>;

  void plug_file(size_t connector, const std::string& path);
  void set_connected(size_t connector, bool connected, std::vector<uint8_t> edid);
  void raise_event(vgn::link_event_e type, uint32_t id);
  /// What the properties of all HDMI outputs say.
  properties_t state();
  void publish(const properties_t& published);
  void add_device();
  void remove_device();
  /// On the testbed's thread.
  int answer(uint32_t request, std::span<uint8_t> record, const client_writer_t& write);
  void note_open(bool open);
  /// From any thread: publishes on the loop's.
  void publish_later(properties_t published);

  event_base* base;
  testbed_t& testbed;
  property_tree_t& tree;
  story_t& story;
  zyl::mutex_t mutex;
  streamer_model_t model ZYL_GUARDED_BY(mutex);
  unsigned next_number = 0;
  /// Posts that outlive this object find it gone.
  std::shared_ptr<streamer_driver_t*> alive;
  std::optional<device_node_t> node;
};

}  // namespace sim
