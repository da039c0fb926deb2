#include "zyl/platform_files.h"

#include <charconv>
#include <fstream>

namespace zyl {

int number_in_first_line(const std::string& path, int fallback) {
  std::ifstream file(path);
  std::string line;
  std::getline(file, line);
  int number = fallback;
  std::from_chars(line.data(), line.data() + line.size(), number);
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
