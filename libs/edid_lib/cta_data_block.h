#pragma once

#include <memory>

#include "edid_lib/edid_block.h"

namespace edid_lib {

/// A data block of the CTA extension (CTA-861, section 7.5): its first byte has the tag in bits 5 to 7 and the length
/// of what follows in bits 0 to 4.
class cta_data_block_t : public edid_block_t {
 public:
  explicit cta_data_block_t(std::span<const uint8_t> block_bytes) : edid_block_t(block_bytes) {}

  /// The bytes that a block takes, the first included, as its first byte tells.
  static std::size_t told_size(uint8_t first_byte) { return (first_byte & 0x1FU) + 1; }

  virtual uint8_t tag() const { return first_byte_tag(); }

  /// Whether there is a first byte, and it has this class's tag.
  bool valid() const override { return !data.empty() && tag() == first_byte_tag(); }

  /// By tag.
  std::string_view name() const override;
  void accept(visitor_t* visitor, bool forward) override;

 protected:
  uint8_t first_byte_tag() const { return byte(0) >> 5; }
};

/// Tag 1: short audio descriptors.
class cta_audio_data_block_t final : public cta_data_block_t {
 public:
  static constexpr uint8_t own_tag = 1;
  using cta_data_block_t::cta_data_block_t;

  uint8_t tag() const override { return own_tag; }
  void accept(visitor_t* visitor, bool forward) override;
};

/// The data block object for the tag, and the IEEE or extended tag behind it, in `block_bytes`, which have at least one
/// byte. Null for tags that mean nothing.
std::unique_ptr<cta_data_block_t> make_cta_data_block(std::span<const uint8_t> block_bytes);

}  // namespace edid_lib
