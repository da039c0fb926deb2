#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

/// What a fuzz target is: a function that does with one input what the code under test does with bytes from outside,
/// and ends the process if what must hold of it does not. Gives 0.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size);

namespace fuzz {

/// Ends the process with the words that say what must hold, unless it does.
inline void require(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
  }
}

/// An input that is used up from the front. Behind its end there are zeros and empty texts.
class input_t {
 public:
  input_t(const uint8_t* data, std::size_t size) : left(reinterpret_cast<const char*>(data), size) {}

  bool empty() const { return left.empty(); }

  uint8_t take_byte() {
    const std::string_view byte = take(1);
    return byte.empty() ? uint8_t{0} : static_cast<uint8_t>(byte.front());
  }

  /// The next `count` bytes, or as many as there are.
  std::string_view take(std::size_t count) {
    const std::string_view taken = left.substr(0, count);
    left.remove_prefix(taken.size());
    return taken;
  }

  /// A length byte and that many bytes.
  std::string_view take_text() { return take(take_byte()); }

  std::string_view rest() const { return left; }

 private:
  std::string_view left;
};

}  // namespace fuzz
