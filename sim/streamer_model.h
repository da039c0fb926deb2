#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "vgn/src/vgn_ioctl.h"

namespace sim {

/// An input, as the driver's clients see it.
struct streamer_input_t {
  vgn::resource_record_t resource{};
  bool connected = false;
};

/// An output and what it was last told. The outputs' states hold from `add` to `remove` of the device, a display
/// outlives that.
struct streamer_output_t {
  vgn::resource_record_t resource{};
  bool connected = false;
  std::vector<uint8_t> edid;
  uint32_t edid_reads = 0;

  struct programmed_t {
    std::optional<vgn::timing_t> timing;
    std::optional<vgn::audio_record_t> audio;
    std::optional<uint32_t> source;  ///< id of the routed input
    bool muted = false;
    bool frozen = false;
  };
  programmed_t programmed;
};

/// What the streamer driver knows: its resources and their states. Plain values; the owner keeps threads apart.
///
/// Ids are scattered on purpose: they are no places in a list, inputs and outputs share one number space, and 0 is a
/// real id.
class streamer_model_t {
 public:
  explicit streamer_model_t(size_t hdmi_output_count);

  const std::vector<streamer_input_t>& inputs() const { return input_list; }
  /// The HDMI outputs first, in order of their connectors, then the others.
  const std::vector<streamer_output_t>& outputs() const { return output_list; }

  /// Null for an id that is not an input's or output's.
  const streamer_input_t* find_input(uint32_t id) const;
  streamer_output_t* find_output(uint32_t id);

  size_t hdmi_output_count() const { return hdmi_outputs; }
  /// The connector of an HDMI output, by id; nothing for other outputs.
  std::optional<size_t> connector(uint32_t output_id) const;
  streamer_output_t& hdmi_output(size_t connector) { return output_list[connector]; }

  /// Forgets what the outputs were told, as a device that comes up anew has.
  void reset_outputs();

 private:
  size_t hdmi_outputs;
  std::vector<streamer_input_t> input_list;
  std::vector<streamer_output_t> output_list;
};

/// The name in a resource record, which has no end when it fills its field.
std::string resource_name(const vgn::resource_record_t& resource);

}  // namespace sim
