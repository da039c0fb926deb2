#include "sim/model.h"

#include <algorithm>
#include <array>

namespace sim {
namespace {

constexpr std::array<model_t, 5> models{{{85, 3}, {100, 3}, {105, 2}, {106, 2}, {137, 1}}};

}  // namespace

std::optional<model_t> find_model(int id) {
  const auto* found = std::find_if(models.begin(), models.end(), [id](const model_t& model) { return model.id == id; });
  return found != models.end() ? std::optional(*found) : std::nullopt;
}

}  // namespace sim
