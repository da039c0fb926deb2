#pragma once

#include <optional>
#include <vector>

#include "edid_lib/cta_data_block.h"
#include "edid_lib/vid_resolution.h"

namespace edid_lib {

/// Tag 2: short video descriptors (CTA-861, section 7.5.1), a byte each, best first. 1 to 127 and 193 to 253 are video
/// identification codes; 129 to 192 are codes 1 to 64, marked native.
class cta_video_data_block_t final : public cta_data_block_t {
 public:
  static constexpr uint8_t own_tag = 2;
  static constexpr std::size_t most_entries = largest_size - 1;

  /// Where a mode stands in the list, counted from 0.
  struct position_t {
    std::size_t index;
    bool native;
  };

  using cta_data_block_t::cta_data_block_t;
  cta_video_data_block_t() : cta_data_block_t(own_tag, 1) {}

  uint8_t tag() const override { return own_tag; }
  std::unique_ptr<cta_data_block_t> clone() const override { return std::make_unique<cta_video_data_block_t>(*this); }

  /// Leaves the first byte alone, telling of no entries. In a block without bytes it is 0, which is another tag.
  void clear() override;
  void accept(visitor_t* visitor, bool forward) override;

  /// The modes of the codes, in their order, each followed by the mode at the other rate of its pair, 59.94 behind 60.
  /// Native ones and the first are preferred. Codes without a row in `cta_timings` are left out.
  std::vector<vid_resolution_t> modes() const;

  /// The same, behind what is in `list`.
  void append_modes(std::vector<vid_resolution_t>& list) const;

  /// Whether there is room for another entry; never in a block without bytes, which has nowhere to tell its length.
  bool has_room() const { return size() > 0 && size() < largest_size; }

  /// Appends the code of `mode`, not marked native. False without change if there is no room, or no code.
  bool add(const vid_resolution_t& mode);

  /// The first entry with the code of `mode`; nothing if there is none.
  std::optional<position_t> contains(const vid_resolution_t& mode) const;
};

}  // namespace edid_lib
