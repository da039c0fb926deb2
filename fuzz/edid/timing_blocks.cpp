#include "edid_lib/timing_lookup.h"
#include "fuzz/edid/support.h"

namespace fuzz::edid {
namespace {

/// Whether a code means a mode: a picture of one of four shapes that DMT knows, at a rate from 60 to 120.
bool has_code(const vid_resolution_t& mode) {
  const int64_t width = mode.width;
  const int64_t height = mode.height;
  const bool has_shape =
      width * 10 == height * 16 || width * 3 == height * 4 || width * 4 == height * 5 || width * 9 == height * 16;
  const float rate = mode.nominal_fps();
  if (!has_shape || width % 8 != 0 || width < 256 || width > 2288 || rate < 60 || rate > 120) {
    return false;
  }
  return edid_lib::is_dmt({mode.width, mode.height, {}, {}, rate});
}

}  // namespace

void check_established(edid_lib::est_timings_block_t block, input_t& input) {
  const vid_resolution_t mode = take_mode(input);
  const bool known = edid_lib::is_established(mode);
  require(known || !block.contains(mode), "a mode without a bit is not there");
  const auto before = block.modes().size() - (block.contains(mode) ? 1 : 0);
  block.set(mode, true);
  require(block.contains(mode) == known, "a mode with a bit is set");
  require(block.modes().size() == before + (known ? 1 : 0), "and no other by it");
  block.set(mode, false);
  require(!block.contains(mode) && block.modes().size() == before, "and cleared");
  require(block.valid() == block.contains(edid_lib::est_timings_block_t::required_mode()), "one mode is required");
}

void check_standard(edid_lib::std_timings_block_t block, input_t& input) {
  require(block.size() == 16 && block.count() <= 8, "there are eight codes");
  require(block.modes(3, true).size() <= block.count(), "a code means at most one mode");
  for (int i = 0; i < 4; ++i) {
    const vid_resolution_t mode = take_mode(input);
    const std::size_t before = block.count();
    const bool was_there = block.contains(mode);
    const bool added = block.add(mode);
    require(block.count() <= before + (added && !was_there ? 1 : 0), "one code is added to those in use");
    const bool is_there = block.contains(mode);
    require(!has_code(mode) || added == (before < 8), "a mode with a code is added where there is room");
    require(!has_code(mode) || !added || is_there, "and is there");
    require(block.remove(mode) == is_there, "what is there is removed");
    while (block.remove(mode)) {
    }
    require(!block.contains(mode), "what was removed each time is not there");
  }
  block.clear();
  require(block.count() == 0 && block.modes(3, false).empty(), "a block that is cleared has no codes in use");
}

void check_detailed(edid_lib::det_timings_block_t block, input_t& input) {
  require(block.size() == block.capacity() * edid_lib::detailed_entry_size, "a block has room for its entries");
  const uint32_t entries = input.take_byte() % 6;
  block.set_capacity(entries);
  block.clear();
  require(block.count() == 0 && block.modes().empty(), "a block that is cleared has no timings");
  for (uint32_t i = 0; i <= entries; ++i) {
    const vid_resolution_t mode = take_mode(input);
    const auto entry = encode_detailed_entry(mode);
    const std::size_t at = block.count();
    const bool added = block.add(mode);
    require(added == (entry.has_value() && at < entries), "a mode with a timing is added where there is room");
    require(!added || same_bytes(block.on_get(at), *entry), "as its entry");
    require(block.count() == at + (added && edid_lib::has_clock(*entry) ? 1 : 0), "and counts by its clock");
  }
  require(block.on_get(entries).empty(), "there is no entry behind the last");
  require(block.modes().size() <= block.count(), "modes have clocks");
}

bool fits_entry(const vid_resolution_t& mode) {
  const auto& timing = mode.timing;
  return timing.v_sync_start - timing.v_active < 64 && timing.v_sync_end - timing.v_sync_start < 64 &&
         timing.v_total - timing.v_active < 4096;
}

void check_entry(const vid_resolution_t& mode) {
  const auto entry = encode_detailed_entry(mode);
  require(entry.has_value(), "a mode of an entry has an entry");
  const auto again = edid_lib::decode_detailed_entry(*entry);
  if (!fits_entry(mode)) {
    return;
  }
  require(again.has_value() && again->timing == mode.timing && again->fps == mode.fps, "the timing comes back");
  require(again->type == mode.type && again->location == mode.location, "with its type");
  require(again->h_image_mm == mode.h_image_mm && again->v_image_mm == mode.v_image_mm, "the image size comes back");
  require(again->h_border == mode.h_border && again->v_border == mode.h_border, "one border is written twice");
}

}  // namespace fuzz::edid
