#pragma once

#include <vector>

#include "edid_lib/edid_block.h"
#include "edid_lib/vid_resolution.h"

namespace edid_lib {

/// Bytes 38 to 53 of the base block (E-EDID 1.4, section 3.9): eight codes of two bytes. The first is width / 8 - 31;
/// the second has the picture's shape in bits 6 and 7 (0 square before revision 3 and 16:10 from then on, 1 4:3, 2 5:4,
/// 3 16:9) and the rate - 60 in the six bits below. A code of twice 0x00, 0x01 or 0x20 is unused.
class std_timings_block_t final : public edid_block_t {
 public:
  /// Always 16 bytes: short input is padded with 1, longer input cut.
  explicit std_timings_block_t(std::span<const uint8_t> block_bytes);

  /// Makes all codes unused.
  void clear() override;
  std::string_view name() const override { return "Standard Timings"; }
  void accept(visitor_t* visitor, bool forward) override;

  /// Number of codes in use.
  std::size_t count() const;

  /// The modes of the codes in use, in their order. Codes that mean no DMT mode are left out. With `reduced_first` the
  /// form with reduced blanking is preferred where DMT has one.
  std::vector<vid_resolution_t> modes(uint32_t revision, bool reduced_first) const;

  /// The same, behind what is in `list`.
  void append_modes(std::vector<vid_resolution_t>& list, uint32_t revision, bool reduced_first) const;

  /// Whether a code means `mode`, read as those of revision 3 with the mode's own preference for reduced blanking.
  bool contains(const vid_resolution_t& mode) const;

  /// Puts the code of `mode` into the first unused place, unless it is there already. False without change if all eight
  /// are in use or the mode has no code: its shape or size does not fit, or DMT knows no mode of this code. Rates below
  /// 60 and above 123 wrap, and widths are cut to a multiple of 8, so what is stored for them is the code of another
  /// mode: 800x600@120 for 800x600@56.
  bool add(const vid_resolution_t& mode);

  /// Makes the first code that means `mode` unused. False if there is none.
  bool remove(const vid_resolution_t& mode);
};

}  // namespace edid_lib
