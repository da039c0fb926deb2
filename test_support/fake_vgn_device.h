#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "vgn/src/device.h"
#include "vgn/src/vgn_ioctl.h"

namespace test_support {

/// A streamer driver in memory: resources that a test describes, and a record of what it was told to do. One thread.
///
/// Its devices refer to it, so it must outlive them and the `vgn::system_t` that owns one.
class fake_vgn_driver_t {
 public:
  struct input_t {
    std::string name = {};
    uint32_t kind = 0;
    uint32_t hw = 0;
    bool connected = false;
    uint32_t authentication = 0;
    uint32_t encryption = 0;
    uint32_t audio_channels = 0;
    uint32_t active_audio = 0;
  };

  struct output_t {
    std::string name = {};
    uint32_t kind = 0;
    bool connected = false;
    uint32_t authentication = 0;
    uint32_t encryption = 0;
    std::vector<uint8_t> edid = {};
  };

  fake_vgn_driver_t();
  ~fake_vgn_driver_t();

  fake_vgn_driver_t(const fake_vgn_driver_t&) = delete;
  fake_vgn_driver_t& operator=(const fake_vgn_driver_t&) = delete;
  fake_vgn_driver_t(fake_vgn_driver_t&&) = delete;
  fake_vgn_driver_t& operator=(fake_vgn_driver_t&&) = delete;

  /// A device for `vgn::system_t`. One of them is open at a time.
  std::unique_ptr<vgn::device_t> make_device();

  /// Makes an event record readable.
  void tell(uint32_t type, uint32_t id);

  /// Makes these bytes readable, whole records or not.
  void tell_bytes(std::span<const std::byte> bytes);

  /// Ends the stream of events, as a device does that has gone.
  void end_events();

  /// What it was told to do since the last call, oldest first: "set_timing 5 594000 3840 2160", "set_audio_clock 5
  /// 6144 594000 148500", "set_source 5 <- 3 hw 1", "remove_source 5 <- 3 hw 1", "mute 5 1", "freeze 5 1", "mux_mode
  /// 3". Questions are not told.
  std::vector<std::string> take_commands();

  std::map<uint32_t, input_t> inputs;
  std::map<uint32_t, output_t> outputs;
  /// Requests that fail with EIO.
  std::set<uint32_t> failing;
  /// Requests of which one call to come fails with EIO: 1 the next one, 2 the one after it.
  std::map<uint32_t, uint32_t> failing_call;
  /// What `open` gives, 0 or a negative errno, and the node that it was last asked for.
  int open_result = 0;
  std::string opened_node;
  bool is_open = false;
  /// The counts of resources that the driver claims in the next first call, whatever there is; ~0 for the truth.
  uint32_t claimed_inputs = ~0U;
  /// The size that the driver claims for an EDID in the first call; ~0 for the truth.
  uint64_t claimed_edid_size = ~uint64_t{0};
  uint32_t edid_reads = 0;
  uint32_t resource_calls = 0;
  vgn::timing_t last_timing{};

 private:
  class device_t;

  bool fails(uint32_t request);
  int serve(uint32_t request, void* record);
  int serve_resources(vgn::resources_record_t& record);
  int serve_edid(vgn::edid_record_t& record);
  int serve_hdcp(vgn::hdcp_record_t& record);
  int serve_question(uint32_t request, void* record);
  int serve_command(uint32_t request, const void* record);

  int event_reader = -1;
  int event_writer = -1;
  std::vector<std::string> commands;
};

}  // namespace test_support
