#include "edid_lib/std_timings_block.h"

#include <algorithm>
#include <iterator>
#include <optional>

#include "edid_lib/timing_lookup.h"
#include "edid_lib/visitor.h"

namespace edid_lib {
namespace {

constexpr std::size_t block_size = 16;
constexpr std::size_t code_size = 2;
constexpr uint8_t unused = 1;
constexpr int32_t smallest_eighth_width = 31;
constexpr int32_t lowest_rate = 60;
constexpr uint32_t own_revision = 3;  ///< of the codes that are written

struct code_t {
  uint8_t first;
  uint8_t second;

  bool in_use() const { return first != second || (first != 0x00 && first != unused && first != 0x20); }
  uint8_t shape() const { return second >> 6; }
  uint8_t rate_above_60() const { return second & 63; }
};

code_t code_at(std::span<const uint8_t> bytes, std::size_t at) { return {bytes[at], bytes[at + 1]}; }

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

vid_resolution_t picture_of(code_t code, uint32_t revision) {
  const int32_t eighth_width = code.first + smallest_eighth_width;
  vid_resolution_t mode;
  mode.width = 8 * eighth_width;
  mode.height = height_of(eighth_width, code.shape(), revision);
  mode.fps = static_cast<float>(code.rate_above_60() + lowest_rate);
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

std::optional<vid_resolution_t> decode(code_t code, uint32_t revision, bool reduced_first) {
  const vid_resolution_t picture = picture_of(code, revision);
  std::optional<vid_resolution_t> mode;
  if (reduced_first) {
    mode = dmt_mode(picture, true);
  }
  return mode ? mode : dmt_mode(picture, false);
}

struct shape_t {
  uint8_t number;
  int64_t width;
  int64_t height;
};

constexpr shape_t shapes[] = {{0, 16, 10}, {1, 4, 3}, {2, 5, 4}, {3, 16, 9}};

std::optional<uint8_t> shape_of(const vid_resolution_t& mode) {
  const auto* const found = std::find_if(std::begin(shapes), std::end(shapes), [&](const shape_t& shape) {
    return mode.width * shape.height == mode.height * shape.width;
  });
  return found != std::end(shapes) ? std::optional(found->number) : std::nullopt;
}

/// The code of the mode's numbers, whether or not it means the mode.
std::optional<code_t> code_of(const vid_resolution_t& mode) {
  const int32_t first = mode.width / 8 - smallest_eighth_width;
  const auto shape = shape_of(mode);
  if (first < 0 || first > 255 || !shape) {
    return std::nullopt;
  }
  const auto rate = static_cast<int32_t>(mode.nominal_fps() - static_cast<float>(lowest_rate));
  return code_t{static_cast<uint8_t>(first), static_cast<uint8_t>(*shape << 6 | (rate & 63))};
}

bool means(code_t code, const vid_resolution_t& mode) {
  const auto meant = decode(code, own_revision, mode.reduced_blanking);
  return meant && *meant == mode;
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

void std_timings_block_t::clear() { std::fill(data.begin(), data.end(), unused); }

std::size_t std_timings_block_t::count() const {
  std::size_t codes = 0;
  for (std::size_t at = 0; at < data.size(); at += code_size) {
    codes += code_at(data, at).in_use() ? 1 : 0;
  }
  return codes;
}

std::vector<vid_resolution_t> std_timings_block_t::modes(uint32_t revision, bool reduced_first) const {
  std::vector<vid_resolution_t> list;
  append_modes(list, revision, reduced_first);
  return list;
}

void std_timings_block_t::append_modes(std::vector<vid_resolution_t>& list, uint32_t revision,
                                       bool reduced_first) const {
  for (std::size_t at = 0; at < data.size(); at += code_size) {
    const code_t code = code_at(data, at);
    if (!code.in_use()) {
      continue;
    }
    if (auto mode = decode(code, revision, reduced_first)) {
      list.push_back(*std::move(mode));
    }
  }
}

bool std_timings_block_t::contains(const vid_resolution_t& mode) const {
  for (std::size_t at = 0; at < data.size(); at += code_size) {
    if (means(code_at(data, at), mode)) {
      return true;
    }
  }
  return false;
}

bool std_timings_block_t::add(const vid_resolution_t& mode) {
  const auto code = code_of(mode);
  if (!code || !decode(*code, own_revision, mode.reduced_blanking)) {
    return false;
  }
  for (std::size_t at = 0; at < data.size(); at += code_size) {
    if (!code_at(data, at).in_use()) {
      if (!contains(mode)) {
        data[at] = code->first;
        data[at + 1] = code->second;
      }
      return true;
    }
  }
  return false;
}

bool std_timings_block_t::remove(const vid_resolution_t& mode) {
  for (std::size_t at = 0; at < data.size(); at += code_size) {
    if (means(code_at(data, at), mode)) {
      data[at] = unused;
      data[at + 1] = unused;
      return true;
    }
  }
  return false;
}

}  // namespace edid_lib
