#pragma once

#include <vector>

#include "edid_lib/edid_block.h"
#include "edid_lib/vid_resolution.h"

namespace edid_lib {

/// Bytes 35 to 37 of the base block (E-EDID 1.4, section 3.8): a bit for each row of `established_timings`. Index 0 to
/// 7 is that bit of the first byte, 8 to 15 of the second, 16 the highest bit of the third.
class est_timings_block_t final : public edid_block_t {
 public:
  /// Always 3 bytes: short input is padded with 0, longer input cut.
  explicit est_timings_block_t(std::span<const uint8_t> block_bytes);

  /// 640x480@60, which every display must show.
  static const vid_resolution_t& required_mode();

  /// Whether the required mode is there.
  bool valid() const override;
  std::string_view name() const override { return "Established Timings"; }
  void accept(visitor_t* visitor, bool forward) override;

  /// Whether the bit of `mode` is set; false for a mode that has none.
  bool contains(const vid_resolution_t& mode) const;

  /// Sets or clears the bit of `mode`; nothing for a mode that has none.
  void set(const vid_resolution_t& mode, bool on);

  /// The modes whose bits are set, in the order of their keys, with computed rates.
  std::vector<vid_resolution_t> modes() const;

  /// The same, behind what is in `list`.
  void append_modes(std::vector<vid_resolution_t>& list) const;

 private:
  bool has_index(uint32_t index) const;
};

}  // namespace edid_lib
