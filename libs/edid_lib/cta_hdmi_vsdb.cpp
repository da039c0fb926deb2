#include "edid_lib/cta_hdmi_vsdb.h"

#include <algorithm>

#include "edid_lib/timing_lookup.h"
#include "edid_lib/visitor.h"

namespace edid_lib {
namespace {

constexpr std::size_t smallest_size = 6;
constexpr uint8_t physical_address_at = 4;
constexpr uint8_t capabilities_at = 6;
constexpr uint8_t max_tmds_at = 7;
constexpr uint32_t tmds_step_mhz = 5;

constexpr uint32_t no_physical_address = 0xFFFFFFFF;
constexpr uint16_t unset_physical_address = 0xFFFF;
constexpr uint32_t no_offset = 0xFFFFFFFF;
constexpr uint32_t vic_length_without_latencies_at = 10;
constexpr uint32_t latency_pair_size = 2;
constexpr uint8_t vic_length_shift = 5;
constexpr uint8_t vic_length_mask = 7 << vic_length_shift;

constexpr int32_t last_hdmi_vic = 4;

}  // namespace

cta_hdmi_vsdb_t::cta_hdmi_vsdb_t() : cta_vendor_specific_data_block_t(own_ieee_id, smallest_size) {
  set_physical_address(unset_physical_address);
}

bool cta_hdmi_vsdb_t::valid() const { return cta_vendor_specific_data_block_t::valid() && ieee_id() == own_ieee_id; }

void cta_hdmi_vsdb_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

uint32_t cta_hdmi_vsdb_t::physical_address() const {
  if (size() < smallest_size) {
    return no_physical_address;
  }
  return uint32_t{byte(physical_address_at)} << 8 | byte(physical_address_at + 1);
}

void cta_hdmi_vsdb_t::set_physical_address(uint16_t address) {
  if (size() >= smallest_size) {
    set_byte(physical_address_at, static_cast<uint8_t>(address >> 8));
    set_byte(physical_address_at + 1, static_cast<uint8_t>(address));
  }
}

void cta_hdmi_vsdb_t::set_capability(uint8_t mask, bool on) {
  grow(capabilities_at + 1U);
  set_mask(capabilities_at, mask, on);
}

void cta_hdmi_vsdb_t::set_max_tmds_mhz(uint32_t megahertz) {
  grow(max_tmds_at + 1U);
  set_byte(max_tmds_at, static_cast<uint8_t>(std::min(megahertz / tmds_step_mhz, uint32_t{255})));
}

uint32_t cta_hdmi_vsdb_t::vic_length_offset() const {
  if (!hdmi_video_present()) {
    return no_offset;
  }
  return vic_length_without_latencies_at + (latency_present() ? latency_pair_size : 0) +
         (interlaced_latency_present() ? latency_pair_size : 0);
}

uint32_t cta_hdmi_vsdb_t::hdmi_vic_count() const {
  return has_vic_list() ? data[vic_length_offset()] >> vic_length_shift : 0;
}

std::span<const uint8_t> cta_hdmi_vsdb_t::hdmi_vics() const {
  if (!has_vic_list()) {
    return {};
  }
  const auto behind = bytes().subspan(vic_length_offset() + 1U);
  return behind.first(std::min<std::size_t>(hdmi_vic_count(), behind.size()));
}

std::vector<vid_resolution_t> cta_hdmi_vsdb_t::modes() const {
  std::vector<vid_resolution_t> list;
  append_modes(list);
  return list;
}

void cta_hdmi_vsdb_t::append_modes(std::vector<vid_resolution_t>& list) const {
  for (const uint8_t vic : hdmi_vics()) {
    if (vic >= 1 && vic <= last_hdmi_vic) {
      list.push_back(hdmi_resolution(vic));
    }
  }
}

void cta_hdmi_vsdb_t::tell_vic_count(std::size_t count) {
  set_bits(static_cast<uint8_t>(vic_length_offset()), vic_length_mask, static_cast<uint8_t>(count << vic_length_shift));
}

void cta_hdmi_vsdb_t::clear_hdmi_vics() {
  if (!has_vic_list()) {
    return;
  }
  const auto first = data.begin() + vic_length_offset() + 1;
  data.erase(first, first + static_cast<std::ptrdiff_t>(hdmi_vics().size()));
  tell_vic_count(0);
  resize(size());
}

bool cta_hdmi_vsdb_t::add(const vid_resolution_t& mode) {
  const uint32_t vic = hdmi_vic(mode);
  const std::size_t count = hdmi_vics().size();
  if (!has_vic_list() || count == most_hdmi_vics || size() >= largest_size || vic == no_timing_number) {
    return false;
  }
  const auto end = data.begin() + vic_length_offset() + 1 + static_cast<std::ptrdiff_t>(count);
  data.insert(end, static_cast<uint8_t>(vic));
  tell_vic_count(count + 1);
  resize(size());
  return true;
}

}  // namespace edid_lib
