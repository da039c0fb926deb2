#include "edid_lib/cta_vendor_data_blocks.h"

#include <algorithm>

#include "edid_lib/timing_lookup.h"
#include "edid_lib/visitor.h"

namespace edid_lib {
namespace {

constexpr uint32_t no_ieee_id = 0xFFFFFFFF;
constexpr uint32_t no_offset = 0xFFFFFFFF;

constexpr std::size_t smallest_with_id = 4;
constexpr std::size_t smallest_with_video_flags = 9;
constexpr uint8_t video_flags_at = 8;
constexpr uint8_t latency_mask = 0x80;
constexpr uint8_t interlaced_latency_mask = 0x40;
constexpr uint8_t video_mask = 0x20;
constexpr uint32_t vic_length_without_latencies_at = 10;
constexpr uint32_t latency_pair_size = 2;

constexpr std::size_t smallest_forum_block = 5;
constexpr uint8_t forum_version_at = 4;
constexpr uint8_t forum_version = 1;

constexpr int32_t last_hdmi_vic = 4;

}  // namespace

bool cta_vendor_specific_data_block_t::valid() const { return cta_data_block_t::valid() && size() >= smallest_with_id; }

uint32_t cta_vendor_specific_data_block_t::ieee_id() const {
  if (size() < smallest_with_id) {
    return no_ieee_id;
  }
  return data[1] | uint32_t{data[2]} << 8 | uint32_t{data[3]} << 16;
}

bool cta_hdmi_vsdb_t::valid() const { return cta_vendor_specific_data_block_t::valid() && ieee_id() == own_ieee_id; }

void cta_hdmi_vsdb_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

uint32_t cta_hdmi_vsdb_t::vic_length_offset() const {
  if (size() < smallest_with_video_flags || !has_mask(video_flags_at, video_mask)) {
    return no_offset;
  }
  return vic_length_without_latencies_at + (has_mask(video_flags_at, latency_mask) ? latency_pair_size : 0) +
         (has_mask(video_flags_at, interlaced_latency_mask) ? latency_pair_size : 0);
}

uint32_t cta_hdmi_vsdb_t::hdmi_vic_count() const {
  const uint32_t offset = vic_length_offset();
  return offset < size() ? data[offset] >> 5 : 0;
}

std::vector<vid_resolution_t> cta_hdmi_vsdb_t::modes() const {
  std::vector<vid_resolution_t> found;
  const std::size_t first = std::size_t{vic_length_offset()} + 1;
  const std::size_t end = std::min(first + hdmi_vic_count(), size());
  for (std::size_t i = first; i < end; ++i) {
    const int32_t vic = data[i];
    if (vic >= 1 && vic <= last_hdmi_vic) {
      found.push_back(hdmi_resolution(vic));
    }
  }
  return found;
}

bool cta_hdmi_forum_vsdb_t::valid() const {
  return cta_vendor_specific_data_block_t::valid() && ieee_id() == own_ieee_id && size() >= smallest_forum_block &&
         byte(forum_version_at) == forum_version;
}

void cta_hdmi_forum_vsdb_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

}  // namespace edid_lib
