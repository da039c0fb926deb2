// What files with EDIDs hold: raw bytes, hex text, or what edid-decode has printed.
#include <algorithm>
#include <string>
#include <vector>

#include "fuzz/target.h"
#include "tools/vgnctl/edid/edid_input.h"
#include "tools/vgnctl/edid/hex_text.h"

namespace {

using bytes_t = std::vector<uint8_t>;
using fuzz::require;

/// Whatever bytes there are, their hex text stands for them.
void check_hex(const bytes_t& bytes) {
  const std::string text = vgnctl::hex_text(bytes);
  require(vgnctl::bytes_of_hex(text) == bytes, "bytes that are written as hex text and read are the same");
  require(vgnctl::hex_digits_of(vgnctl::hex_lines(bytes)) == text, "lines of hex text have the digits of the bytes");
  if (!bytes.empty()) {
    require(vgnctl::edid_in("edid-decode (hex):\n\n" + vgnctl::hex_lines(bytes) + "\n---\n") == bytes,
            "a block of the decoder stands for its bytes");
  }
  if (bytes.size() >= 128) {
    require(vgnctl::edid_in(vgnctl::hex_lines(bytes)) == bytes, "hex text of a whole block stands for its bytes");
  }
}

/// A file that is no hex text is taken as it is.
void check_kind(std::string_view content, const bytes_t& edid) {
  const auto digits = vgnctl::hex_digits_of(content);
  const bool whole = digits && digits->size() >= 256;
  const bool block = content.find("edid-decode (hex):") != std::string_view::npos;
  if (whole) {
    require(edid.size() == digits->size() / 2, "each pair of digits is a byte");
  } else if (!block) {
    require(std::equal(edid.begin(), edid.end(), content.begin(), content.end(),
                       [](uint8_t byte, char character) { return byte == static_cast<uint8_t>(character); }),
            "other files are raw bytes");
  }
  require(edid.size() <= content.size(), "nothing is added");
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  const std::string_view content(reinterpret_cast<const char*>(data), size);
  check_kind(content, vgnctl::edid_in(content));
  check_hex(bytes_t(data, data + size));
  return 0;
}
