#pragma once

#include <cstdint>
#include <vector>

#include "edid_lib/vid_resolution.h"
#include "edid_lib/visitor.h"

namespace edid_lib {

/// Collects the modes of an EDID, best first: the base block's detailed timings, with the first mode of the video data
/// block behind the first of them, or in front of all if the CTA extension declares no native timing; the extension's
/// detailed timings; the modes of the video and HDMI blocks in the order of the blocks; standard timings; established
/// timings. A mode that is told several times is there several times.
class visitor_modes_t final : public visitor_t {
 public:
  using visitor_t::visit;

  /// Replaces the list by the modes of `edid`; by nothing if that is null.
  void read(edid_t* edid) override;

  const std::vector<vid_resolution_t>& modes() const { return mode_list; }

  /// Hands the list over and leaves this one empty.
  std::vector<vid_resolution_t> take_modes();

  void visit(edid_base_t* base, bool forward) override;
  void visit(est_timings_block_t* block, bool forward) override;
  void visit(std_timings_block_t* block, bool forward) override;
  void visit(det_timings_block_t* block, bool forward) override;
  void visit(cta_extension_t* extension, bool forward) override;
  void visit(cta_video_data_block_t* block, bool forward) override;
  void visit(cta_hdmi_vsdb_t* block, bool forward) override;

 private:
  void append(std::vector<vid_resolution_t> modes);
  void prefer_native(uint32_t count);

  bool no_native = false;  ///< The extension declares no native detailed timing.
  bool reduced_first = true;
  uint32_t revision = 3;
  std::vector<vid_resolution_t> mode_list;
};

}  // namespace edid_lib
