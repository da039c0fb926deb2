#pragma once

#include <string>
#include <vector>

#include "tools/vgnctl/status/status_items.h"

namespace vgnctl {

/// A line an item, each with its end: name, value and unit in columns, "not available" for what cannot be read. Texts
/// are escaped as those of properties are, so that a line stays one; an empty one is two quotation marks.
std::string status_table(const std::vector<status_item_t>& items);

/// One object on one line, without its end, a member an item. Bytes of a text that are no UTF-8 are U+FFFD.
std::string status_json(const std::vector<status_item_t>& items);

}  // namespace vgnctl
