#pragma once

#include "sim/model.h"
#include "sim/property_tree.h"

namespace sim {

/// Publishes what the appliance's start-up writes: "/sys/config/..." with architecture, platform, part number and
/// firmware, and "/sim/model".
void publish_identity(property_tree_t& tree, const model_t& model);

}  // namespace sim
