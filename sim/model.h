#pragma once

#include <optional>
#include <string>

#include "sim/property_tree.h"

namespace sim {

/// What the simulated appliance has to know of an endpoint model.
struct model_t {
  int id;
  int output_count;
};

/// The model with this id: 85, 100, 105, 106 or 137. Nothing for any other.
std::optional<model_t> find_model(int id);

/// Publishes what the appliance's start-up writes: "/sys/config/..." with architecture, platform, part number and
/// firmware, and "/sim/model".
void publish_identity(property_tree_t& tree, const model_t& model);

}  // namespace sim
