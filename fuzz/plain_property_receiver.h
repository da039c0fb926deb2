#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

using frame_t = std::vector<std::string>;

/// The frame receiver of the property bus as one would say it: compare the front with the magic, drop a byte, compare
/// again. What the quick one must agree with, whatever comes.
class plain_property_receiver_t {
 public:
  void append(std::string_view received) { buffer += received; }

  std::optional<frame_t> take_frame() {
    while (!std::string_view(magic).starts_with(std::string_view(buffer).substr(0, magic.size()))) {
      buffer.erase(0, 1);
    }
    if (buffer.size() < header_size || buffer.size() < header_size + length_at(buffer, magic.size())) {
      return std::nullopt;
    }
    const std::string payload = buffer.substr(header_size, length_at(buffer, magic.size()));
    buffer.erase(0, header_size + payload.size());
    return fields_of(payload);
  }

  const std::string& left() const { return buffer; }

 private:
  static constexpr std::string_view magic = "ipc_magic";
  static constexpr std::size_t header_size = 11;

  static std::size_t length_at(std::string_view bytes, std::size_t at) {
    return static_cast<uint8_t>(bytes[at]) + std::size_t{256} * static_cast<uint8_t>(bytes[at + 1]);
  }

  static frame_t fields_of(std::string_view payload) {
    frame_t fields;
    for (std::size_t at = 0; at + 2 <= payload.size();) {
      const std::size_t length = length_at(payload, at);
      if (at + 2 + length > payload.size()) {
        break;
      }
      fields.emplace_back(payload.substr(at + 2, length));
      at += 2 + length;
    }
    return fields;
  }

  std::string buffer;
};

}  // namespace fuzz
