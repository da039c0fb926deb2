#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <string_view>
#include <vector>

#include "edid_lib/vid_timing.h"

namespace test_support {

using detailed_entry_t = std::array<uint8_t, 18>;

/// The 18 bytes of a detailed timing with just these numbers; an interlaced one only gets its flag.
detailed_entry_t detailed_entry(const edid_lib::vid_timing_t& timing);

/// A CTA data block: `tag` and what follows the first byte.
std::vector<uint8_t> data_block(uint8_t tag, std::initializer_list<uint8_t> payload);

/// Puts an EDID together by hand. Starts with a base block of EDID 1.3 that is valid, shows 640x480@60 and nothing
/// else.
class edid_builder_t {
 public:
  edid_builder_t();

  /// Any byte of what there is so far; the checksums are made at the end.
  edid_builder_t& byte(std::size_t offset, uint8_t value);

  /// The detailed timing at place 0 or 1.
  edid_builder_t& detailed(std::size_t place, const edid_lib::vid_timing_t& timing);
  edid_builder_t& detailed(std::size_t place, const detailed_entry_t& entry);

  /// The standard timing code at place 0 to 7.
  edid_builder_t& standard(std::size_t place, uint8_t first, uint8_t second);

  /// The text descriptor at `offset`; no line feed is put behind the text.
  edid_builder_t& descriptor(std::size_t offset, uint8_t tag, std::string_view text);

  /// Appends a CTA extension.
  edid_builder_t& cta(uint8_t native_count, const std::vector<std::vector<uint8_t>>& data_blocks,
                      const std::vector<edid_lib::vid_timing_t>& detailed_timings = {});

  /// The bytes, each block with its checksum.
  std::vector<uint8_t> build() const;

 private:
  std::vector<uint8_t> bytes;
};

}  // namespace test_support
