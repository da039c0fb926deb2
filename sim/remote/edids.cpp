#include "sim/remote/edids.h"

#include <algorithm>
#include <array>
#include <numeric>
#include <span>
#include <string_view>

namespace sim {
namespace {

constexpr std::size_t block_size = 128;

/// A progressive detailed timing: what is shown, and the blanking that follows (VESA E-EDID 3.10.2).
struct timing_t {
  uint32_t clock_khz;
  uint32_t h_active, h_front_porch, h_sync, h_blank;
  uint32_t v_active, v_front_porch, v_sync, v_blank;
};

constexpr timing_t uhd_60{594000, 3840, 176, 88, 560, 2160, 8, 10, 90};
constexpr timing_t full_hd_60{148500, 1920, 88, 44, 280, 1080, 4, 5, 45};
constexpr timing_t sxga_75{135000, 1280, 16, 144, 408, 1024, 1, 3, 42};

uint8_t low(uint32_t value) { return static_cast<uint8_t>(value & 0xFFU); }

/// The bits above the low eight of two values, four of each in a byte.
uint8_t high_nibbles(uint32_t first, uint32_t second) {
  return static_cast<uint8_t>((first >> 8U & 0xFU) << 4U | (second >> 8U & 0xFU));
}

void put_timing(std::span<uint8_t> at, const timing_t& timing) {
  const uint32_t clock = timing.clock_khz / 10;
  const std::array<uint8_t, 18> bytes{
      low(clock), low(clock >> 8U), low(timing.h_active), low(timing.h_blank),
      high_nibbles(timing.h_active, timing.h_blank), low(timing.v_active), low(timing.v_blank),
      high_nibbles(timing.v_active, timing.v_blank), low(timing.h_front_porch), low(timing.h_sync),
      static_cast<uint8_t>((timing.v_front_porch & 0xFU) << 4U | (timing.v_sync & 0xFU)), 0,
      // A picture of 600 by 340 mm, no border, digital separate sync with both polarities positive.
      low(600), low(340), high_nibbles(600, 340), 0, 0, 0x1E};
  std::copy(bytes.begin(), bytes.end(), at.begin());
}

/// A display descriptor with text, of `tag` (VESA E-EDID 3.10.3).
void put_text(std::span<uint8_t> at, uint8_t tag, std::string_view text) {
  std::fill_n(at.begin(), 18, uint8_t{' '});
  std::fill_n(at.begin(), 5, uint8_t{0});
  at[3] = tag;
  std::copy(text.begin(), text.end(), at.begin() + 5);
  at[5 + text.size()] = '\n';
}

/// A descriptor that says nothing.
void put_dummy(std::span<uint8_t> at) {
  std::fill_n(at.begin(), 18, uint8_t{0});
  at[3] = 0x10;
}

void put_checksum(std::span<uint8_t> block) {
  const unsigned sum = std::accumulate(block.begin(), block.end() - 1, 0U);
  block.back() = low(256U - sum % 256U);
}

/// A base block, EDID 1.3, that lists `timing` alone; its checksum is not set.
edid_bytes_t base_block(std::string_view name, const timing_t& timing) {
  constexpr std::array<uint8_t, 54> head{
      0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0x00,              // header
      0x58, 0xEE, 0x01, 0x00, 0x00, 0x00, 0x00, 0x00, 0x01, 0x22,  // made by "VGN", product 1, week 1 of 2024
      0x01, 0x03, 0x80, 0x3C, 0x22, 0x78, 0x0A,                    // EDID 1.3, digital, 60 by 34 cm, gamma 2.2
      0xEE, 0x91, 0xA3, 0x54, 0x4C, 0x99, 0x26, 0x0F, 0x50, 0x54,  // the colours of sRGB
      0x00, 0x00, 0x00,                                            // no established timing
      0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01,              // no standard timing
      0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01, 0x01};
  edid_bytes_t block(block_size);
  std::copy(head.begin(), head.end(), block.begin());
  const std::span<uint8_t> bytes(block);
  put_timing(bytes.subspan(54), timing);
  put_text(bytes.subspan(72), 0xFC, name);
  put_dummy(bytes.subspan(90));
  put_dummy(bytes.subspan(108));
  return block;
}

/// A CTA-861 extension with three video modes, 3840x2160, 1920x1080 and 1280x720 at 60 Hz, stereo PCM, and the HDMI
/// vendor block with the physical address 1.0.0.0; one native detailed timing, in the base block.
edid_bytes_t cta_extension() {
  constexpr std::array<uint8_t, 18> blocks{
      0x43, 0x61, 0x10, 0x04,               // video: VIC 97, 16, 4
      0x23, 0x09, 0x07, 0x07,               // audio: PCM, two channels, 32 to 48 kHz, 16 to 24 bits
      0x83, 0x01, 0x00, 0x00,               // speakers: front left and right
      0x65, 0x03, 0x0C, 0x00, 0x10, 0x00};  // HDMI vendor block
  edid_bytes_t extension(block_size);
  extension[0] = 0x02;
  extension[1] = 0x03;
  extension[2] = static_cast<uint8_t>(4 + blocks.size());
  extension[3] = 0x41;  // basic audio, one native timing
  std::copy(blocks.begin(), blocks.end(), extension.begin() + 4);
  put_checksum(extension);
  return extension;
}

}  // namespace

edid_bytes_t uhd_display_edid() {
  edid_bytes_t edid = base_block("VGN UHD", uhd_60);
  edid[35] = 0x21;  // established: 640x480 and 800x600 at 60 Hz
  edid[38] = 0xD1;  // standard: 1920x1080 at 60 Hz
  edid[39] = 0xC0;
  edid[126] = 1;
  put_checksum(edid);
  const edid_bytes_t extension = cta_extension();
  edid.insert(edid.end(), extension.begin(), extension.end());
  return edid;
}

edid_bytes_t full_hd_display_edid() {
  edid_bytes_t edid = base_block("VGN FHD", full_hd_60);
  put_checksum(edid);
  return edid;
}

edid_bytes_t unusable_display_edid() {
  edid_bytes_t edid = base_block("VGN 75 HZ", sxga_75);
  put_checksum(edid);
  return edid;
}

}  // namespace sim
