#include "edid_lib/cta_vendor_data_blocks.h"

#include <algorithm>

#include "edid_lib/visitor.h"

namespace edid_lib {
namespace {

constexpr uint32_t no_ieee_id = 0xFFFFFFFF;
constexpr std::size_t smallest_with_id = 4;

constexpr std::size_t forum_size = 8;
constexpr std::size_t smallest_forum_size = 5;
constexpr uint8_t forum_version_at = 4;
constexpr uint8_t forum_version = 1;
constexpr uint8_t max_tmds_at = 5;
constexpr uint32_t tmds_step_mhz = 5;
constexpr uint32_t smallest_told_tmds_mhz = 340;

}  // namespace

cta_vendor_specific_data_block_t::cta_vendor_specific_data_block_t(uint32_t id, std::size_t block_size)
    : cta_data_block_t(own_tag, block_size) {
  set_ieee_id(id);
}

bool cta_vendor_specific_data_block_t::valid() const { return cta_data_block_t::valid() && size() >= smallest_with_id; }

uint32_t cta_vendor_specific_data_block_t::ieee_id_of(std::span<const uint8_t> block_bytes) {
  if (block_bytes.size() < smallest_with_id) {
    return no_ieee_id;
  }
  return block_bytes[1] | uint32_t{block_bytes[2]} << 8 | uint32_t{block_bytes[3]} << 16;
}

void cta_vendor_specific_data_block_t::set_ieee_id(uint32_t id) {
  if (size() >= smallest_with_id) {
    set_byte(1, static_cast<uint8_t>(id));
    set_byte(2, static_cast<uint8_t>(id >> 8));
    set_byte(3, static_cast<uint8_t>(id >> 16));
  }
}

cta_hdmi_forum_vsdb_t::cta_hdmi_forum_vsdb_t() : cta_vendor_specific_data_block_t(own_ieee_id, forum_size) {
  set_byte(forum_version_at, forum_version);
}

bool cta_hdmi_forum_vsdb_t::valid() const {
  return cta_vendor_specific_data_block_t::valid() && ieee_id() == own_ieee_id && size() >= smallest_forum_size &&
         version() == forum_version;
}

void cta_hdmi_forum_vsdb_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

void cta_hdmi_forum_vsdb_t::set_max_tmds_rate(uint32_t megahertz) {
  if (megahertz < 1) {
    return;
  }
  const uint32_t told = megahertz < smallest_told_tmds_mhz ? 0 : megahertz / tmds_step_mhz;
  set_byte(max_tmds_at, static_cast<uint8_t>(std::min(told, uint32_t{255})));
}

}  // namespace edid_lib
