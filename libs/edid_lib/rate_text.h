#pragma once

#include <cstddef>
#include <string_view>

namespace edid_lib {

/// The text of a frame rate: no decimals if it is whole, else two. Holds the text itself.
class rate_text_t {
 public:
  /// `rate` is a nominal rate, so its text is short.
  explicit rate_text_t(float rate);

  std::string_view view() const { return {characters, length}; }

 private:
  char characters[16] = {};
  std::size_t length;
};

}  // namespace edid_lib
