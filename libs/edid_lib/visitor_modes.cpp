#include "edid_lib/visitor_modes.h"

#include <algorithm>
#include <cstddef>
#include <initializer_list>
#include <utility>

#include "edid_lib/cta_hdmi_vsdb.h"
#include "edid_lib/cta_video_data_block.h"
#include "edid_lib/edid.h"

namespace edid_lib {
namespace {

/// Whether a mode of an undefined origin, or of this one, is meant.
bool comes_from(const vid_resolution_t& mode, timing_location_t location) {
  return mode.location == timing_location_t::undefined || mode.location == location;
}

bool is_of(const vid_resolution_t& mode, std::initializer_list<timing_type_t> types) {
  return mode.type == timing_type_t::undefined || std::find(types.begin(), types.end(), mode.type) != types.end();
}

}  // namespace

void visitor_modes_t::read(edid_t* edid) {
  constexpr std::size_t usual_size = 64;
  writing = false;
  mode_list.clear();
  mode_list.reserve(usual_size);
  apply(edid);
}

void visitor_modes_t::write(edid_t* edid) {
  writing = true;
  write_index_det = 0;
  apply(edid);
}

std::vector<vid_resolution_t> visitor_modes_t::take_modes() { return std::exchange(mode_list, {}); }

/// Appends the block's modes, and moves the first of them to the head of the list.
void visitor_modes_t::read_from(const cta_video_data_block_t& block) {
  const auto count = static_cast<std::ptrdiff_t>(mode_list.size());
  block.append_modes(mode_list);
  const auto first = mode_list.begin() + count;
  if (first != mode_list.end() && count > 0) {
    std::rotate(mode_list.begin() + (no_native ? 0 : 1), first, first + 1);
  }
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
  if (base != nullptr && forward && !writing) {
    reduced_first = base->digital_input();
    revision = base->revision();
  }
}

void visitor_modes_t::visit(det_timings_block_t* block, bool forward) {
  if (block == nullptr || !forward) {
    return;
  }
  if (writing) {
    write_to(*block);
  } else {
    block->append_modes(mode_list);
  }
}

void visitor_modes_t::visit(cta_extension_t* extension, bool forward) {
  if (extension == nullptr || !forward) {
    return;
  }
  if (writing) {
    extension->or_mask(3, no_native ? 0 : 1);
  } else {
    no_native = extension->native_count() == 0;
    prefer_native(extension->native_count());
  }
}

void visitor_modes_t::visit(cta_video_data_block_t* block, bool forward) {
  if (block == nullptr || forward) {
    return;
  }
  if (writing) {
    write_to(*block);
  } else {
    read_from(*block);
  }
}

void visitor_modes_t::visit(cta_hdmi_vsdb_t* block, bool forward) {
  if (block == nullptr || forward) {
    return;
  }
  if (writing) {
    write_to(*block);
  } else {
    block->append_modes(mode_list);
  }
}

void visitor_modes_t::visit(std_timings_block_t* block, bool forward) {
  if (block == nullptr || forward) {
    return;
  }
  if (writing) {
    write_to(*block);
  } else {
    block->append_modes(mode_list, revision, reduced_first);
  }
}

void visitor_modes_t::visit(est_timings_block_t* block, bool forward) {
  if (block == nullptr || forward) {
    return;
  }
  if (writing) {
    write_to(*block);
  } else {
    block->append_modes(mode_list);
  }
}

void visitor_modes_t::write_to(det_timings_block_t& block) {
  bool placed = false;
  block.clear();
  while (write_index_det < mode_list.size() && block.count() < block.capacity()) {
    const vid_resolution_t& mode = mode_list[write_index_det++];
    if (comes_from(mode, timing_location_t::detailed_timing_descriptor)) {
      placed = block.add(mode) || placed;
    }
  }
  if (!placed) {
    no_native = true;
  }
}

void visitor_modes_t::write_to(cta_video_data_block_t& block) {
  block.clear();
  while (write_index_video < mode_list.size() && block.has_room()) {
    const vid_resolution_t& mode = mode_list[write_index_video++];
    if (is_of(mode, {timing_type_t::cta}) && comes_from(mode, timing_location_t::cta_video_data_block)) {
      block.add(mode);
    }
  }
}

void visitor_modes_t::write_to(cta_hdmi_vsdb_t& block) const {
  block.clear_hdmi_vics();
  for (const vid_resolution_t& mode : mode_list) {
    if (is_of(mode, {timing_type_t::cta, timing_type_t::hdmi}) && comes_from(mode, timing_location_t::cta_hdmi_vsdb)) {
      block.add(mode);
    }
  }
}

void visitor_modes_t::write_to(std_timings_block_t& block) const {
  block.clear();
  for (const vid_resolution_t& mode : mode_list) {
    if (is_of(mode, {timing_type_t::dmt, timing_type_t::gft, timing_type_t::cvt}) &&
        comes_from(mode, timing_location_t::standard_block)) {
      block.add(mode);
    }
  }
}

void visitor_modes_t::write_to(est_timings_block_t& block) const {
  block.clear();
  for (const vid_resolution_t& mode : mode_list) {
    if (is_of(mode, {timing_type_t::established}) && comes_from(mode, timing_location_t::established_block)) {
      block.set(mode, true);
    }
  }
  block.set(est_timings_block_t::required_mode(), true);
}

}  // namespace edid_lib
