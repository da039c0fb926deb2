#include "edid_lib/cta_video_data_block.h"

#include "edid_lib/timing_lookup.h"
#include "edid_lib/timing_tables.h"
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

void append_found(std::vector<vid_resolution_t>& list, const vid_resolution_t& found, bool preferred) {
  vid_resolution_t& mode = list.emplace_back(found);
  mode.location = timing_location_t::cta_video_data_block;
  mode.preferred = preferred;
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
  const timing_table_t& table = cta_timings();
  for (std::size_t i = 1; i < data.size(); ++i) {
    const uint32_t code = code_of(data[i]);
    const vid_resolution_t* mode = table.named_mode(code);
    if (mode == nullptr) {
      continue;
    }
    const bool preferred = is_native(data[i]) || i == 1;
    append_found(list, *mode, preferred);
    list.back().type = timing_type_t::cta;
    const vid_resolution_t* alternative = table.alternative_mode(code);
    if (alternative->timing != mode->timing) {
      append_found(list, *alternative, preferred);
    }
  }
}

}  // namespace edid_lib
