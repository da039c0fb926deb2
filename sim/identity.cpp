#include "sim/identity.h"

#include <array>
#include <cstdio>
#include <string>

namespace sim {
namespace {

std::string part_number(int id) {
  std::array<char, 16> text{};
  std::snprintf(text.data(), text.size(), "part-%03d", id);
  return text.data();
}

}  // namespace

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
