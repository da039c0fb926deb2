#pragma once

#include <functional>
#include <string>
#include <vector>

namespace control_lib {

/// A word in the tree by which a running process can be looked into.
struct status_entry_t {
  std::string word;
  /// Gives the entry's text, or does what the word says; none in an entry that only holds others.
  std::function<std::string()> read = {};
  std::vector<status_entry_t> entries = {};
};

}  // namespace control_lib
