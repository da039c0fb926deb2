#include "sim/model.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace sim {
namespace {

constexpr std::array<model_t, 5> models{{{85, 3}, {100, 3}, {105, 2}, {106, 2}, {137, 1}}};

std::string part_number(int id) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "part-%03d", id);
  return text.data();
}

}  // namespace

std::optional<model_t> find_model(int id) {
  const auto* found = std::find_if(models.begin(), models.end(), [id](const model_t& model) { return model.id == id; });
  return found != models.end() ? std::optional(*found) : std::nullopt;
}

void publish_identity(property_tree_t& tree, const model_t& model) {
  tree.publish("/sim/model", std::to_string(model.id));
  tree.publish("/sys/config/arch", "aarch64");
  tree.publish("/sys/config/platform", "vgnstreamer");
  tree.publish("/sys/config/part_number", part_number(model.id));
  tree.publish("/sys/config/fw_server_crc", "1f2e3d4c");
  tree.publish("/sys/config/fw_server_hash", "simulated-firmware");
  tree.publish("/sys/config/fw_server_crc_compat", "1f2e3d4c");
  tree.publish("/sys/config/fw_server_hash_compat", "simulated-firmware");
}

}  // namespace sim
