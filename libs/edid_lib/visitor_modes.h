#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "edid_lib/vid_resolution.h"
#include "edid_lib/visitor.h"

namespace edid_lib {

/// Collects the modes of an EDID, best first: the base block's detailed timings, with the first mode of the video data
/// block behind the first of them, or in front of all if the CTA extension declares no native timing; the extension's
/// detailed timings; the modes of the video and HDMI blocks in the order of the blocks; standard timings; established
/// timings. A mode that is told several times is there several times.
///
/// Or the other way round: writes a list of modes into the blocks that an EDID has, each of which is emptied first. A
/// mode goes where its type and location say that it comes from, and where they say nothing, into every block that has
/// a form for it. Detailed timings go by the location alone, as they can tell a mode of any type. What does not fit is
/// left out.
class visitor_modes_t final : public visitor_t {
 public:
  using visitor_t::visit;

  visitor_modes_t() = default;

  /// With a list to write.
  explicit visitor_modes_t(std::vector<vid_resolution_t> modes_to_write) : mode_list(std::move(modes_to_write)) {}

  /// Replaces the list by the modes of `edid`; by nothing if that is null.
  void read(edid_t* edid) override;

  /// Writes the list into `edid`. For one EDID only: another needs a fresh visitor.
  void write(edid_t* edid) override;

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
  void prefer_native(uint32_t count);

  void write_to(det_timings_block_t& block);
  void write_to(cta_video_data_block_t& block);
  void write_to(cta_hdmi_vsdb_t& block) const;
  void write_to(std_timings_block_t& block) const;
  void write_to(est_timings_block_t& block) const;
  void read_from(const cta_video_data_block_t& block);

  bool writing = false;
  bool no_native = false;  ///< No native detailed timing was declared, or written.
  bool reduced_first = true;
  uint32_t revision = 3;
  std::size_t write_index_det = 0;    ///< The next mode to place in detailed timings,
  std::size_t write_index_video = 0;  ///< and the next one to place in video data blocks.
  std::vector<vid_resolution_t> mode_list;
};

}  // namespace edid_lib
