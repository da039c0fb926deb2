#pragma once

#include <string>
#include <vector>

#include "edid_lib/cta_audio_data_block.h"
#include "edid_lib/cta_extended_data_blocks.h"
#include "edid_lib/cta_hdmi_vsdb.h"
#include "edid_lib/cta_vendor_data_blocks.h"
#include "edid_lib/cta_video_data_block.h"
#include "edid_lib/edid.h"
#include "edid_lib/visitor.h"

/// Writes down the names of the blocks it is shown, detailed timings with their offsets, and counts the passes' visits.
class recording_visitor_t final : public edid_lib::visitor_t {
 public:
  using names_t = std::vector<std::string>;

  void visit(edid_lib::edid_t* block, bool forward) override { note(*block, forward); }
  void visit(edid_lib::edid_base_t* block, bool forward) override { note(*block, forward); }
  void visit(edid_lib::est_timings_block_t* block, bool forward) override { note(*block, forward); }
  void visit(edid_lib::std_timings_block_t* block, bool forward) override { note(*block, forward); }
  void visit(edid_lib::det_timings_block_t* block, bool forward) override {
    names(forward).push_back("Detailed Timings at " + std::to_string(block->offset()) + " for " +
                             std::to_string(block->capacity()));
  }
  void visit(edid_lib::base_descriptor_block_t* block, bool forward) override { note(*block, forward); }
  void visit(edid_lib::monitor_name_base_block_t* block, bool forward) override { note(*block, forward, " class"); }
  void visit(edid_lib::monitor_serial_base_block_t* block, bool forward) override { note(*block, forward, " class"); }
  void visit(edid_lib::ascii_string_base_block_t* block, bool forward) override { note(*block, forward, " class"); }
  void visit(edid_lib::cta_extension_t* block, bool forward) override { note(*block, forward); }
  void visit(edid_lib::cta_data_block_t* block, bool forward) override { note(*block, forward); }
  void visit(edid_lib::cta_video_data_block_t* block, bool forward) override { note(*block, forward, " class"); }
  void visit(edid_lib::cta_audio_data_block_t* block, bool forward) override { note(*block, forward, " class"); }
  void visit(edid_lib::cta_hdmi_vsdb_t* block, bool forward) override { note(*block, forward, " class"); }
  void visit(edid_lib::cta_hdmi_forum_vsdb_t* block, bool forward) override { note(*block, forward, " class"); }
  void visit(edid_lib::cta_colorimetry_exdb_t*, bool forward) override { names(forward).push_back("colorimetry"); }
  void visit(edid_lib::cta_video_capability_exdb_t*, bool forward) override { names(forward).push_back("capability"); }
  void visit(edid_lib::cta_ycc_420_video_exdb_t*, bool forward) override { names(forward).push_back("420 video"); }
  void visit(edid_lib::cta_ycc_420_capability_exdb_t*, bool forward) override { names(forward).push_back("420 map"); }

  names_t forward_names;
  names_t backward_names;

 private:
  names_t& names(bool forward) { return forward ? forward_names : backward_names; }
  void note(const edid_lib::edid_block_t& block, bool forward, const char* suffix = "") {
    names(forward).push_back(std::string(block.name()) + suffix);
  }
};
