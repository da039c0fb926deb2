// Files that tell how the hardware is: the whole input is the file.
#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>

#include "fuzz/memory_file.h"
#include "fuzz/target.h"
#include "lnx/src/power_source.h"
#include "lnx/src/status_file.h"

namespace {

using fuzz::memory_file_t;
using fuzz::require;

/// No two values that are no number are equal, but here one is as good as another.
bool same(float a, float b) { return a == b || (std::isnan(a) && std::isnan(b)); }

void check_integer(float value, int32_t integer) {
  const double whole = std::trunc(double{value});
  constexpr double least = std::numeric_limits<int32_t>::min();
  constexpr double largest = std::numeric_limits<int32_t>::max();
  const double expected = std::isnan(whole) ? 0 : std::min(std::max(whole, least), largest);
  require(integer == expected, "an integer is the nearest to the float without its fraction");
}

void check_file(const memory_file_t& file, std::string_view content) {
  std::string text = "as it was";
  float value = -77;
  int32_t integer = -77;
  const bool there = !content.empty();
  require(lnx::read_status_text(file.path(), text) == there, "a text is read of a file that is not empty");
  require(lnx::read_status_float(file.path(), value) == there, "so is a float");
  require(lnx::read_status_integer(file.path(), integer) == there, "and an integer");
  if (!there) {
    require(text == "as it was" && value == -77 && integer == -77, "what is not read is left alone");
    return;
  }
  require(text == content.substr(0, content.find('\n')), "the text is the first line");
  require(same(value, lnx::status_float(text)), "the float is that of the first line");
  check_integer(value, integer);
}

/// By the C library's reading of a number, which tells a range error apart from none.
std::optional<uint32_t> plain_power_class(const std::string& text) {
  char* end = nullptr;
  errno = 0;
  const long number = std::strtol(text.c_str(), &end, 10);
  if (end == text.c_str() || errno == ERANGE || number != static_cast<int>(number)) {
    return std::nullopt;
  }
  return number >= 5 ? 4 : number == 4 ? 3 : 2;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  static const memory_file_t file;
  const std::string_view content = fuzz::input_t(data, size).rest();
  file.replace(content);
  check_file(file, content);
  const std::string text(content);
  require(lnx::poe_power_class(text) == plain_power_class(text), "a PoE class is a power class if it is a number");
  return 0;
}
