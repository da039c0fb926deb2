#pragma once

#include <vector>

#include "edid_lib/detailed_entry.h"
#include "edid_lib/edid_block.h"
#include "edid_lib/vid_resolution.h"

namespace edid_lib {

/// Detailed timings (E-EDID 1.4, section 3.10.2), in the base block and at the end of the CTA extension. Entries of 18
/// bytes:
///
///     0    pixel clock in 10 kHz, 16 bits; 0: no timing
///     2    horizontal active, blanking; 4: their upper nibbles
///     5    vertical active, blanking; 7: their upper nibbles
///     8    horizontal sync offset, pulse width; 10: vertical sync offset, pulse width, a nibble each;
///     11   the upper two bits of these four
///     12   image width, height in mm; 14: their upper nibbles
///     15   horizontal border, vertical border; written as the horizontal one twice, which is deliberate
///     17   bit 7 interlaced, bits 3 and 4 separate sync, bit 2 positive vertical, bit 1 positive horizontal sync
class det_timings_block_t final : public edid_block_t {
 public:
  static constexpr std::size_t entry_size = detailed_entry_size;

  /// `block_offset` is the position in the block around it, or in the EDID for those that `cta_extension_t::detailed`
  /// makes. The bytes are cut, or padded with 1, to `entries` entries.
  det_timings_block_t(std::span<const uint8_t> block_bytes, uint32_t block_offset, uint32_t entries);

  std::string_view name() const override { return "Detailed Timings"; }
  void accept(visitor_t* visitor, bool forward) override;

  uint32_t offset() const { return position; }
  uint32_t capacity() const { return room; }

  /// Makes room for `entries`. New ones are padding, in use until the block is cleared.
  void set_capacity(uint32_t entries);

  /// The 18 bytes of an entry, whether or not it is a timing; none beyond the last. They live as long as this block is
  /// not changed.
  std::span<const uint8_t> on_get(std::size_t index) const;

  /// Number of entries with a clock.
  std::size_t count() const;

  /// The modes of the entries that are timings, in their order. Entries without clock or sync pulse, or smaller than 64
  /// by 64, are not.
  std::vector<vid_resolution_t> modes() const;

  /// The same, behind what is in `list`.
  void append_modes(std::vector<vid_resolution_t>& list) const;

  /// Writes `mode` at the place behind as many entries as there are in use, `count()`; what stood there is lost. False
  /// without change if there is no room left. False with zeros at that place if `encode_detailed_entry` has no entry
  /// for the mode.
  bool add(const vid_resolution_t& mode);

 private:
  detailed_entry_view_t entry(std::size_t index) const;

  uint32_t position;
  uint32_t room = 0;
};

}  // namespace edid_lib
