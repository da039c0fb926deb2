#pragma once

#include <optional>
#include <string>

#include "edid_lib/base_descriptor_block.h"

namespace vgnctl {

/// The text of a descriptor of one of the three classes that have one, byte by byte as the display has it.
inline std::optional<std::string> text_of_descriptor(const edid_lib::base_descriptor_block_t& block) {
  if (const auto* name = dynamic_cast<const edid_lib::monitor_name_base_block_t*>(&block)) {
    return name->text();
  }
  if (const auto* serial = dynamic_cast<const edid_lib::monitor_serial_base_block_t*>(&block)) {
    return serial->text();
  }
  if (const auto* text = dynamic_cast<const edid_lib::ascii_string_base_block_t*>(&block)) {
    return text->text();
  }
  return std::nullopt;
}

}  // namespace vgnctl
