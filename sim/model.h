#pragma once

#include <optional>

namespace sim {

/// What the simulated appliance has to know of an endpoint model.
struct model_t {
  int id;
  int output_count;
};

/// The model with this id: 85, 100, 105, 106 or 137. Nothing for any other.
std::optional<model_t> find_model(int id);

}  // namespace sim
