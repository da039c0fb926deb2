#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace vgnctl {

/// One thing that the hardware tells about itself.
struct status_item_t {
  std::string name;
  /// A number, a text or an array of numbers; null if it cannot be read.
  nlohmann::json value;
  /// The unit of a number, or what it means; may be empty.
  std::string unit;
};

/// Everything that the readers of the hardware's status say on this machine, in the order of the help. Only looks:
/// nothing is set, and events are left to whom they are for. Once a process, as the info of the KTM5030 is read.
std::vector<status_item_t> read_status();

}  // namespace vgnctl
