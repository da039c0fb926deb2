#include "edid_lib/cta_video_data_block.h"

#include <utility>

#include "edid_lib/timing_lookup.h"
#include "edid_lib/visitor.h"

namespace edid_lib {
namespace {

constexpr uint8_t first_native = 129;
constexpr uint8_t last_native = 192;
constexpr uint8_t native_code_mask = 127;

bool is_native(uint8_t descriptor) { return descriptor >= first_native && descriptor <= last_native; }

uint32_t code_of(uint8_t descriptor) {
  return is_native(descriptor) ? descriptor & native_code_mask : uint32_t{descriptor};
}

void append_with_alternative(std::vector<vid_resolution_t>& modes, vid_resolution_t mode) {
  vid_resolution_t alternative = rate_alternative(mode);
  const bool differs = alternative.timing != mode.timing;
  alternative.location = mode.location;
  alternative.preferred = mode.preferred;
  modes.push_back(std::move(mode));
  if (differs) {
    modes.push_back(std::move(alternative));
  }
}

}  // namespace

void cta_video_data_block_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

void cta_video_data_block_t::clear() { resize(1); }

bool cta_video_data_block_t::add(const vid_resolution_t& mode) {
  const uint32_t vic = has_room() ? cta_vic(mode) : no_timing_number;
  if (vic == no_timing_number) {
    return false;
  }
  resize(size() + 1, static_cast<uint8_t>(vic));
  return true;
}

std::optional<cta_video_data_block_t::position_t> cta_video_data_block_t::contains(const vid_resolution_t& mode) const {
  const uint32_t vic = cta_vic(mode);
  for (std::size_t i = 1; i < data.size(); ++i) {
    if (code_of(data[i]) == vic) {
      return position_t{i - 1, is_native(data[i])};
    }
  }
  return std::nullopt;
}

std::vector<vid_resolution_t> cta_video_data_block_t::modes() const {
  std::vector<vid_resolution_t> list;
  append_modes(list);
  return list;
}

void cta_video_data_block_t::append_modes(std::vector<vid_resolution_t>& list) const {
  for (std::size_t i = 1; i < data.size(); ++i) {
    auto mode = cta_resolution(code_of(data[i]));
    if (!mode) {
      continue;
    }
    mode->location = timing_location_t::cta_video_data_block;
    mode->preferred = is_native(data[i]) || i == 1;
    append_with_alternative(list, *std::move(mode));
  }
}

}  // namespace edid_lib
