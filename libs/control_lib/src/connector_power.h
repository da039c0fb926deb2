#pragma once

#include <cstdint>
#include <optional>

namespace control_lib {

/// Whether the 5 V line of an HDMI input's connector says that a source is there, by the files of the model. Nothing if
/// the file cannot be read.
std::optional<bool> connector_power(int input_index, uint32_t model_id);

}  // namespace control_lib
