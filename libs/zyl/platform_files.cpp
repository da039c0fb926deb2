#include "zyl/platform_files.h"

#include <algorithm>
#include <charconv>
#include <fstream>

namespace zyl {

int number_in_first_line(const std::string& path, int fallback) {
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);
  std::string_view text = line;
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
  if (text.starts_with('+') && !text.starts_with("+-")) {
    text.remove_prefix(1);
  }
  int number = fallback;
  std::from_chars(text.data(), text.data() + text.size(), number);
  return number;
}

bool any_line_contains(const std::string& path, std::string_view word) {
  std::ifstream file(path);
  std::string line;
  while (std::getline(file, line)) {
    if (line.find(word) != std::string::npos) {
      return true;
    }
  }
  return false;
}

}  // namespace zyl
