// Files of the machine that hold a number in their first line: a byte for the fallback, then the file.
#include "zyl/platform_files.h"

#include <cctype>
#include <cerrno>

#include "fuzz/memory_file.h"
#include "fuzz/target.h"

namespace {

using fuzz::memory_file_t;
using fuzz::require;

/// The number as the C library reads it, which takes more kinds of white space; nothing is out of its range.
int plain_number(std::string_view content, int fallback) {
  std::string line(content.substr(0, content.find('\n')));
  line = line.substr(std::min(line.find_first_not_of(" \t"), line.size()));
  char* end = nullptr;
  errno = 0;
  const long number =
      std::isspace(static_cast<uint8_t>(line.c_str()[0])) != 0 ? 0 : std::strtol(line.c_str(), &end, 10);
  const bool is_number = end != nullptr && end != line.c_str() && errno == 0 && number == static_cast<int>(number);
  return is_number ? static_cast<int>(number) : fallback;
}

void check_word(const memory_file_t& file, std::string_view content, std::string_view word) {
  // A line is what a line feed ends, so that a word without one is in a line if it is in the file.
  const bool there = content.find(word) != std::string_view::npos && !content.empty();
  require(zyl::any_line_contains(file.path(), word) == there, "a word is in a line if it is in the file");
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  static const memory_file_t file;
  fuzz::input_t input(data, size);
  const int fallback = input.take_byte() - 128;
  const std::string_view content = input.rest();
  file.replace(content);
  require(zyl::number_in_first_line(file.path(), fallback) == plain_number(content, fallback), "the number is told");
  check_word(file, content, "Tarn");
  check_word(file, content, content.substr(0, std::min<std::size_t>(content.find('\n'), 8)));
  return 0;
}
