#pragma once

#include <memory>

#include "edid_lib/edid_block.h"

namespace edid_lib {

/// A data block of the CTA extension (CTA-861, section 7.5): its first byte has the tag in bits 5 to 7 and the length
/// of what follows in bits 0 to 4. `size()` counts the first byte, too.
class cta_data_block_t : public edid_block_t {
 public:
  static constexpr std::size_t largest_size = 32;

  explicit cta_data_block_t(std::span<const uint8_t> block_bytes) : edid_block_t(block_bytes) {}

  /// The bytes that a block takes, the first included, as its first byte tells.
  static std::size_t told_size(uint8_t first_byte) { return (first_byte & 0x1FU) + 1; }

  /// Makes the block `new_size` bytes long, with `padding` for new ones, and tells so in the first byte, unless it has
  /// no room for the number.
  void resize(std::size_t new_size, uint8_t padding = 0);

  virtual uint8_t tag() const { return first_byte_tag(); }

  /// A block of the same class and bytes, whatever these would be read as by now. Every class has its own.
  virtual std::unique_ptr<cta_data_block_t> clone() const { return std::make_unique<cta_data_block_t>(*this); }

  /// Whether there is a first byte, and it has this class's tag.
  bool valid() const override { return !data.empty() && tag() == first_byte_tag(); }

  /// By tag.
  std::string_view name() const override;
  void accept(visitor_t* visitor, bool forward) override;

 protected:
  /// A block of `block_size` bytes, all 0 behind the first.
  cta_data_block_t(uint8_t block_tag, std::size_t block_size);

  uint8_t first_byte_tag() const { return byte(0) >> 5; }

  /// Makes the block at least `least` bytes long. One that had none has no tag then, so it is not
  /// valid as a block of a tag of its own.
  void grow(std::size_t least);
};

/// The data block object for the tag, and the IEEE or extended tag behind it, in `block_bytes`. Null, which drops the
/// block, for tags and extended tags that have no name here, and without bytes.
std::unique_ptr<cta_data_block_t> make_cta_data_block(std::span<const uint8_t> block_bytes);

}  // namespace edid_lib
