#pragma once

#include <fstream>
#include <sstream>
#include <string>

namespace sim {

/// The whole text of a file; empty without one.
inline std::string text_of_file(const std::string& path) {
  std::ifstream file(path);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

}  // namespace sim
