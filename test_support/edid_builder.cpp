#include "test_support/edid_builder.h"

#include <algorithm>
#include <numeric>

namespace test_support {
namespace {

constexpr std::size_t block_size = 128;
constexpr std::size_t detailed_at = 54;
constexpr std::size_t entry_size = 18;

uint8_t low(uint32_t value) { return static_cast<uint8_t>(value); }

uint8_t upper_nibbles(uint32_t left, uint32_t right) { return low((left >> 8 & 15) << 4 | (right >> 8 & 15)); }

}  // namespace

detailed_entry_t detailed_entry(const edid_lib::vid_timing_t& timing) {
  const uint32_t h_blanking = timing.h_total - timing.h_active;
  const uint32_t h_offset = timing.h_sync_start - timing.h_active;
  const uint32_t h_width = timing.h_sync_end - timing.h_sync_start;
  const uint32_t v_blanking = timing.v_total - timing.v_active;
  const uint32_t v_offset = timing.v_sync_start - timing.v_active;
  const uint32_t v_width = timing.v_sync_end - timing.v_sync_start;
  const uint32_t clock = timing.pixel_clock_khz / 10;
  detailed_entry_t entry{};
  entry[0] = low(clock);
  entry[1] = low(clock >> 8);
  entry[2] = low(timing.h_active);
  entry[3] = low(h_blanking);
  entry[4] = upper_nibbles(timing.h_active, h_blanking);
  entry[5] = low(timing.v_active);
  entry[6] = low(v_blanking);
  entry[7] = upper_nibbles(timing.v_active, v_blanking);
  entry[8] = low(h_offset);
  entry[9] = low(h_width);
  entry[10] = low((v_offset & 15) << 4 | (v_width & 15));
  entry[11] = low((h_offset >> 8 & 3) << 6 | (h_width >> 8 & 3) << 4 | (v_offset >> 4 & 3) << 2 | (v_width >> 4 & 3));
  entry[17] = low(0x18 | (timing.flags & 1) << 1 | (timing.flags & 4) | (timing.flags & 0x10) << 3);
  return entry;
}

std::vector<uint8_t> data_block(uint8_t tag, std::initializer_list<uint8_t> payload) {
  std::vector<uint8_t> block{low(uint32_t{tag} << 5 | static_cast<uint32_t>(payload.size()))};
  block.insert(block.end(), payload);
  return block;
}

edid_builder_t::edid_builder_t() : bytes(block_size, 0) {
  std::fill(bytes.begin() + 1, bytes.begin() + 7, uint8_t{0xFF});
  byte(18, 1).byte(19, 3).byte(20, 0x80).byte(24, 0x02).byte(35, 0x20);
  std::fill(bytes.begin() + 38, bytes.begin() + 54, uint8_t{1});
  for (std::size_t at = detailed_at; at < 126; at += entry_size) {
    bytes[at + 3] = 0x10;
  }
}

edid_builder_t& edid_builder_t::byte(std::size_t offset, uint8_t value) {
  bytes.at(offset) = value;
  return *this;
}

edid_builder_t& edid_builder_t::detailed(std::size_t place, const edid_lib::vid_timing_t& timing) {
  return detailed(place, detailed_entry(timing));
}

edid_builder_t& edid_builder_t::detailed(std::size_t place, const detailed_entry_t& entry) {
  for (std::size_t i = 0; i < entry.size(); ++i) {
    byte(detailed_at + place * entry_size + i, entry[i]);
  }
  return *this;
}

edid_builder_t& edid_builder_t::standard(std::size_t place, uint8_t first, uint8_t second) {
  return byte(38 + 2 * place, first).byte(39 + 2 * place, second);
}

edid_builder_t& edid_builder_t::descriptor(std::size_t offset, uint8_t tag, std::string_view text) {
  byte(offset + 3, tag);
  for (std::size_t i = 0; i < 13; ++i) {
    byte(offset + 5 + i, i < text.size() ? low(static_cast<uint32_t>(text[i])) : uint8_t{' '});
  }
  return *this;
}

edid_builder_t& edid_builder_t::cta(uint8_t native_count, const std::vector<std::vector<uint8_t>>& data_blocks,
                                    const std::vector<edid_lib::vid_timing_t>& detailed_timings) {
  byte(126, low(bytes[126] + 1U));
  std::vector<uint8_t> block{2, 3, 4, native_count};
  for (const auto& one : data_blocks) {
    block.insert(block.end(), one.begin(), one.end());
  }
  block[2] = low(static_cast<uint32_t>(block.size()));
  for (const auto& timing : detailed_timings) {
    const detailed_entry_t entry = detailed_entry(timing);
    block.insert(block.end(), entry.begin(), entry.end());
  }
  block.resize(block_size, 0);
  bytes.insert(bytes.end(), block.begin(), block.end());
  return *this;
}

std::vector<uint8_t> edid_builder_t::build() const {
  std::vector<uint8_t> built = bytes;
  for (auto block = built.begin(); built.end() - block >= 128; block += 128) {
    block[127] = low(256U - std::accumulate(block, block + 127, 0U) % 256);
  }
  return built;
}

}  // namespace test_support
