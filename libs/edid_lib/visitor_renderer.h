#pragma once

#include <cstdint>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "edid_lib/vid_resolution.h"
#include "edid_lib/visitor.h"

namespace edid_lib {

class cta_extended_data_block_t;
class edid_block_t;

/// Tells people what an EDID says: each block by its name, followed by its fields, indented.
class visitor_renderer_t final : public visitor_t {
 public:
  using visitor_t::visit;

  /// Both start a new report.
  void read(edid_t* edid) override;
  void write(edid_t* edid) override;

  /// The report of the last EDID, lines of text.
  std::string text() const { return report.str(); }

  void visit(edid_base_t* base, bool forward) override;
  void visit(est_timings_block_t* block, bool forward) override;
  void visit(std_timings_block_t* block, bool forward) override;
  void visit(det_timings_block_t* block, bool forward) override;
  void visit(base_descriptor_block_t* block, bool forward) override;
  void visit(monitor_name_base_block_t* block, bool forward) override;
  void visit(monitor_serial_base_block_t* block, bool forward) override;
  void visit(ascii_string_base_block_t* block, bool forward) override;
  void visit(cta_extension_t* extension, bool forward) override;
  void visit(cta_data_block_t* block, bool forward) override;
  void visit(cta_video_data_block_t* block, bool forward) override;
  void visit(cta_audio_data_block_t* block, bool forward) override;
  void visit(cta_hdmi_vsdb_t* block, bool forward) override;
  void visit(cta_hdmi_forum_vsdb_t* block, bool forward) override;
  void visit(cta_colorimetry_exdb_t* block, bool forward) override;
  void visit(cta_video_capability_exdb_t* block, bool forward) override;
  void visit(cta_ycc_420_video_exdb_t* block, bool forward) override;
  void visit(cta_ycc_420_capability_exdb_t* block, bool forward) override;

 private:
  void start(const edid_block_t& block);
  void start_extended(const cta_extended_data_block_t& block);
  void line(std::string_view label, std::string_view value);
  void line(std::string_view label, uint32_t value);
  void flag(std::string_view label, bool value) { line(label, value ? "yes" : "no"); }
  void modes(const std::vector<vid_resolution_t>& list);
  void text_of_descriptor(const base_descriptor_block_t& block, const std::string& text);
  void dump(const edid_block_t& block);
  void codes(std::string_view label, std::span<const uint8_t> list);
  void deep_color(const cta_hdmi_vsdb_t& block);

  std::ostringstream report;
  bool reduced_first = true;  ///< As the base block says,
  uint32_t revision = 3;      ///< for its standard timings.
};

}  // namespace edid_lib
