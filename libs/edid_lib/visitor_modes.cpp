#include "edid_lib/visitor_modes.h"

#include <iterator>
#include <utility>

#include "edid_lib/cta_vendor_data_blocks.h"
#include "edid_lib/cta_video_data_block.h"
#include "edid_lib/edid.h"

namespace edid_lib {

void visitor_modes_t::read(edid_t* edid) {
  mode_list.clear();
  apply(edid);
}

std::vector<vid_resolution_t> visitor_modes_t::take_modes() { return std::exchange(mode_list, {}); }

void visitor_modes_t::append(std::vector<vid_resolution_t> modes) {
  mode_list.insert(mode_list.end(), std::make_move_iterator(modes.begin()), std::make_move_iterator(modes.end()));
}

void visitor_modes_t::prefer_native(uint32_t count) {
  for (vid_resolution_t& mode : mode_list) {
    if (count == 0) {
      return;
    }
    if (mode.location == timing_location_t::detailed_timing_descriptor) {
      mode.preferred = true;
      --count;
    }
  }
}

void visitor_modes_t::visit(edid_base_t* base, bool forward) {
  if (base != nullptr && forward) {
    reduced_first = base->digital_input();
    revision = base->revision();
  }
}

void visitor_modes_t::visit(det_timings_block_t* block, bool forward) {
  if (block != nullptr && forward) {
    append(block->modes());
  }
}

void visitor_modes_t::visit(cta_extension_t* extension, bool forward) {
  if (extension != nullptr && forward) {
    no_native = extension->native_count() == 0;
    prefer_native(extension->native_count());
  }
}

void visitor_modes_t::visit(cta_video_data_block_t* block, bool forward) {
  if (block == nullptr || forward) {
    return;
  }
  std::vector<vid_resolution_t> modes = block->modes();
  if (!modes.empty() && !mode_list.empty()) {
    mode_list.insert(std::next(mode_list.begin(), no_native ? 0 : 1), std::move(modes.front()));
    modes.erase(modes.begin());
  }
  append(std::move(modes));
}

void visitor_modes_t::visit(cta_hdmi_vsdb_t* block, bool forward) {
  if (block != nullptr && !forward) {
    append(block->modes());
  }
}

void visitor_modes_t::visit(std_timings_block_t* block, bool forward) {
  if (block != nullptr && !forward) {
    append(block->modes(revision, reduced_first));
  }
}

void visitor_modes_t::visit(est_timings_block_t* block, bool forward) {
  if (block != nullptr && !forward) {
    append(block->modes());
  }
}

}  // namespace edid_lib
