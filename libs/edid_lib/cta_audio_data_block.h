#pragma once

#include <string>

#include "edid_lib/cta_data_block.h"

namespace edid_lib {

/// Tag 1: short audio descriptors (CTA-861, section 7.5.2), three bytes each:
///
///     0    bits 3 to 6 format, bits 0 to 2 channels - 1
///     1    sample rates, a bit each: 32, 44.1, 48, 88.2, 96, 176.4, 192 kHz
///     2    LPCM: sample sizes, a bit each: 16, 20, 24 bit; otherwise as the format says
///
/// Descriptors count from 0; setters leave alone what is not there.
class cta_audio_data_block_t final : public cta_data_block_t {
 public:
  static constexpr uint8_t own_tag = 1;
  static constexpr std::size_t descriptor_size = 3;
  static constexpr uint8_t linear_pcm = 1;

  using cta_data_block_t::cta_data_block_t;

  /// Room for `descriptors`, at most 10, all 0.
  explicit cta_audio_data_block_t(std::size_t descriptors = 0);

  uint8_t tag() const override { return own_tag; }
  std::unique_ptr<cta_data_block_t> clone() const override { return std::make_unique<cta_audio_data_block_t>(*this); }
  void accept(visitor_t* visitor, bool forward) override;

  /// Number of whole descriptors.
  std::size_t count() const { return size() == 0 ? 0 : (size() - 1) / descriptor_size; }

  /// Audio format code; 0 without such a descriptor.
  uint32_t format(std::size_t descriptor = 0) const;
  void set_format(uint32_t format, std::size_t descriptor = 0);

  /// 1 to 8; 0xFFFFFFFF without such a descriptor.
  uint32_t channels(std::size_t descriptor = 0) const;
  void set_channels(uint32_t channels, std::size_t descriptor = 0);

  /// Bits of the second byte but the highest; 0 without such a descriptor.
  uint8_t sample_rates(std::size_t descriptor = 0) const;
  void set_sample_rates(uint8_t rates, std::size_t descriptor = 0);

  /// The third byte; 0 without such a descriptor.
  uint8_t third_byte(std::size_t descriptor = 0) const;
  void set_third_byte(uint8_t value, std::size_t descriptor = 0);

 private:
  static uint8_t first_byte_of(std::size_t descriptor) {
    return static_cast<uint8_t>(1 + descriptor * descriptor_size);
  }
  bool has(std::size_t descriptor) const { return descriptor < count(); }
};

/// "AC-3"; "Invalid" for what is no format code.
std::string_view audio_format_text(uint32_t format);

/// The rates of the bits, each with a blank behind it: "44.1 kHz 48 kHz ".
std::string sample_rates_text(uint8_t rates);

/// The sample sizes of the bits of an LPCM descriptor's third byte, each with a blank behind it: "16 bit 24 bit ".
std::string bit_depths_text(uint8_t depths);

}  // namespace edid_lib
