#pragma once

#include <vector>

#include "edid_lib/cta_data_block.h"
#include "edid_lib/vid_resolution.h"

namespace edid_lib {

/// Tag 2: short video descriptors (CTA-861, section 7.5.1), a byte each, best first. 1 to 127 and 193 to 253 are video
/// identification codes; 129 to 192 are codes 1 to 64, marked native.
class cta_video_data_block_t final : public cta_data_block_t {
 public:
  static constexpr uint8_t own_tag = 2;
  using cta_data_block_t::cta_data_block_t;

  uint8_t tag() const override { return own_tag; }
  void accept(visitor_t* visitor, bool forward) override;

  /// The modes of the codes, in their order, each followed by the mode at the other rate of its pair, 59.94 behind 60.
  /// Native ones and the first are preferred. Codes without a row in `cta_timings` are left out.
  std::vector<vid_resolution_t> modes() const;
};

}  // namespace edid_lib
