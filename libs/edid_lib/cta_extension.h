#pragma once

#include <memory>
#include <vector>

#include "edid_lib/cta_data_block.h"
#include "edid_lib/cta_extended_data_blocks.h"
#include "edid_lib/det_timings_block.h"
#include "edid_lib/edid_block.h"

namespace edid_lib {

/// The CTA extension block of an EDID, 128 bytes (CTA-861, section 7.5):
///
///     0    tag 2, revision 3
///     2    d, the offset of the first detailed timing; 0 or 4 without data blocks
///     3    bit 7 underscan, 6 basic audio, 5 YCC 4:4:4, 4 YCC 4:2:2, bits 0 to 3: number of native detailed timings
///     4    data blocks, up to d
///     d    detailed timings, 18 bytes each
///     127  checksum
///
/// Tag and revision are put right, the checksum is not looked at. There are detailed timings if d is 1 to 127 and the
/// byte there is not 0, so a first timing whose clock is a multiple of 2.56 MHz hides them all (a 2560x1440 display at
/// 640 MHz does).
/// Data blocks and detailed timings have copies of their bytes, which find their way back in `assemble`.
class cta_extension_t final : public extension_block_t {
 public:
  static constexpr uint8_t own_tag = 2;

  /// Without data blocks and detailed timings.
  cta_extension_t();
  explicit cta_extension_t(std::span<const uint8_t> extension_bytes);
  ~cta_extension_t() override = default;

  cta_extension_t(const cta_extension_t& other);
  cta_extension_t& operator=(const cta_extension_t& other);
  cta_extension_t(cta_extension_t&&) = default;
  cta_extension_t& operator=(cta_extension_t&&) = default;

  /// Leaves no bytes, no data blocks and no detailed timings. It is not valid then, and setters do nothing.
  void reset() override;

  uint8_t tag() const override { return own_tag; }
  bool valid() const override;
  std::string_view name() const override { return "CTA Extension"; }

  /// The backward pass, too, shows the data blocks in the order of the list.
  void accept(visitor_t* visitor, bool forward) override;

  uint8_t revision() const { return byte(1); }

  /// Offset of the first detailed timing, as the bytes tell.
  uint8_t detailed_offset() const { return byte(2); }

  bool underscan() const { return has_mask(3, 0x80); }
  void set_underscan(bool on) { set_mask(3, 0x80, on); }
  bool basic_audio() const { return has_mask(3, 0x40); }
  void set_basic_audio(bool on) { set_mask(3, 0x40, on); }
  bool ycc_444() const { return has_mask(3, 0x20); }
  void set_ycc_444(bool on) { set_mask(3, 0x20, on); }
  bool ycc_422() const { return has_mask(3, 0x10); }
  void set_ycc_422(bool on) { set_mask(3, 0x10, on); }

  /// Number of native detailed timings, those of the base block included; 0 to 15.
  uint8_t native_count() const { return byte(3) & 0x0F; }
  void set_native_count(uint8_t count) { set_bits(3, 0x0F, count); }

  /// In their order, none of them null. A block lives until this extension is reset, assigned to or destroyed, the list
  /// also only until a block is added.
  const std::vector<std::unique_ptr<cta_data_block_t>>& data_blocks() const { return blocks; }

  /// Appends a data block; null is ignored. `refresh_offset` and `assemble` see it.
  void add_block(std::unique_ptr<cta_data_block_t> block);

  /// The first data block of a tag; null if there is none. Owned by this extension, as `data_blocks()` says.
  cta_data_block_t* find_block(uint8_t block_tag) const;
  cta_extended_data_block_t* find_extended_block(uint8_t extended_tag) const;
  bool has_block(uint8_t block_tag) const { return find_block(block_tag) != nullptr; }
  bool has_extended_block(uint8_t extended_tag) const { return find_extended_block(extended_tag) != nullptr; }

  /// The detailed timings; null if there are none.
  const det_timings_block_t* detailed_timings() const { return detailed_block.get(); }

  /// The detailed timings, made with the room behind `detailed_offset()` if there were none; that is the room behind
  /// the data blocks only after `refresh_offset`. They are padding, so `clear` makes the room for modes. Those that are
  /// made have their offset in the EDID, parsed ones the one in this block.
  det_timings_block_t& detailed();

  /// Sets the offset of the first detailed timing to what the data blocks tell of their lengths; without any to 4 if
  /// there are detailed timings, else to 0.
  void refresh_offset();

  /// The 128 bytes that the data blocks and detailed timings make, with their offset and the checksum right. What is
  /// too much is left out: data blocks that do not fit as a whole, then detailed timings from the last on.
  std::vector<uint8_t> assemble() const;

 private:
  void repair();
  void parse_data_blocks();
  void parse_detailed();

  std::vector<std::unique_ptr<cta_data_block_t>> blocks;
  std::unique_ptr<det_timings_block_t> detailed_block;  ///< Null if there are no detailed timings.
};

}  // namespace edid_lib
