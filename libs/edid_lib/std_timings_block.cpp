#include "edid_lib/std_timings_block.h"

#include <optional>

#include "edid_lib/timing_lookup.h"
#include "edid_lib/visitor.h"

namespace edid_lib {
namespace {

constexpr std::size_t block_size = 16;
constexpr std::size_t code_size = 2;
constexpr uint8_t unused = 1;

bool in_use(uint8_t first, uint8_t second) {
  return first != second || (first != 0x00 && first != unused && first != 0x20);
}

int32_t height_of(int32_t eighth_width, uint8_t shape, uint32_t revision) {
  switch (shape) {
    case 1:
      return 6 * eighth_width;
    case 2:
      return 32 * eighth_width / 5;
    case 3:
      return 9 * eighth_width / 2;
    default:
      return revision < 3 ? 8 * eighth_width : 5 * eighth_width;
  }
}

/// 1366 is no multiple of 8, so displays of 1366x768 round to the next code on either side.
bool means_1366x768(const vid_resolution_t& mode) {
  const bool near = (mode.width == 1360 && mode.height == 765) || (mode.width == 1368 && mode.height == 769);
  return near && mode.nominal_fps() == 60;
}

vid_resolution_t picture_of(uint8_t first, uint8_t second, uint32_t revision) {
  const int32_t eighth_width = first + 31;
  vid_resolution_t mode;
  mode.width = 8 * eighth_width;
  mode.height = height_of(eighth_width, second >> 6, revision);
  mode.fps = static_cast<float>((second & 63) + 60);
  if (means_1366x768(mode)) {
    mode.width = 1366;
    mode.height = 768;
  }
  return mode;
}

std::optional<vid_resolution_t> dmt_mode(vid_resolution_t picture, bool reduced_blanking) {
  picture.reduced_blanking = reduced_blanking;
  const vid_timing_t timing = dmt_timing(picture);
  if (!timing.known()) {
    return std::nullopt;
  }
  vid_resolution_t mode(timing);
  mode.type = timing_type_t::dmt;
  mode.location = timing_location_t::standard_block;
  mode.reduced_blanking = reduced_blanking;
  return mode;
}

std::optional<vid_resolution_t> decode(uint8_t first, uint8_t second, uint32_t revision, bool reduced_first) {
  const vid_resolution_t picture = picture_of(first, second, revision);
  std::optional<vid_resolution_t> mode;
  if (reduced_first) {
    mode = dmt_mode(picture, true);
  }
  return mode ? mode : dmt_mode(picture, false);
}

}  // namespace

std_timings_block_t::std_timings_block_t(std::span<const uint8_t> block_bytes) : edid_block_t(block_bytes) {
  data.resize(block_size, unused);
}

void std_timings_block_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

std::size_t std_timings_block_t::count() const {
  std::size_t codes = 0;
  for (std::size_t i = 0; i < block_size; i += code_size) {
    codes += in_use(data[i], data[i + 1]) ? 1 : 0;
  }
  return codes;
}

std::vector<vid_resolution_t> std_timings_block_t::modes(uint32_t revision, bool reduced_first) const {
  std::vector<vid_resolution_t> found;
  for (std::size_t i = 0; i < block_size; i += code_size) {
    if (!in_use(data[i], data[i + 1])) {
      continue;
    }
    if (auto mode = decode(data[i], data[i + 1], revision, reduced_first)) {
      found.push_back(*std::move(mode));
    }
  }
  return found;
}

}  // namespace edid_lib
