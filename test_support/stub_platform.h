#pragma once

#include <optional>
#include <string>

#include "zyl/platform.h"

namespace test_support {

/// Makes this process run on the model with this part number, and on no particular hardware otherwise. While nobody
/// else asks.
inline void set_model(const std::string& part_number) {
  static zyl::platform_t platform;
  platform = zyl::platform_t([&part_number](const std::string& path) -> std::optional<std::string> {
    return path == "/sys/config/part_number" ? part_number : "";
  });
  zyl::platform_t::install(&platform);
}

}  // namespace test_support
