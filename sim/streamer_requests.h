#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "sim/device_node.h"
#include "sim/streamer_model.h"

namespace sim {

/// What came of a request.
struct request_result_t {
  int error = 0;      ///< the errno it fails with, or 0
  std::string story;  ///< what a watcher should hear; empty for a mere question and for what changed nothing
  /// Properties that say the new state: path and value.
  std::vector<std::pair<std::string, std::string>> published;
};

/// Answers one request of the streamer driver's 'V' family on `model`. `record` holds the client's bytes, of the size
/// that the request's number says, and afterwards the driver's.
///
/// Fails with ENOTTY for a request that is not known, EINVAL for an id that is not, EFAULT when the client's pointer
/// leads nowhere, ENXIO for the EDID of an output without a display.
request_result_t answer_streamer_request(streamer_model_t& model, uint32_t request, std::span<uint8_t> record,
                                         const client_writer_t& write);

/// The property below "/sim/hdmi/<connector>/".
std::string hdmi_property(size_t connector, const std::string& name);

/// What the properties of an HDMI output say about what it was told: path and value of timing, audio, source, muted,
/// frozen.
std::vector<std::pair<std::string, std::string>> programmed_properties(const streamer_model_t& model, size_t connector);

}  // namespace sim
