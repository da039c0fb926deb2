#include "edid_lib/cta_data_block.h"

#include <algorithm>

#include "edid_lib/cta_audio_data_block.h"
#include "edid_lib/cta_extended_data_blocks.h"
#include "edid_lib/cta_hdmi_vsdb.h"
#include "edid_lib/cta_vendor_data_blocks.h"
#include "edid_lib/cta_video_data_block.h"
#include "edid_lib/visitor.h"

namespace edid_lib {
namespace {

constexpr uint8_t tag_shift = 5;
constexpr uint8_t length_mask = 0x1F;
constexpr uint8_t speaker_tag = 4;
constexpr uint8_t vesa_transfer_characteristic_tag = 5;

std::unique_ptr<cta_data_block_t> make_vendor_data_block(std::span<const uint8_t> block_bytes) {
  switch (cta_vendor_specific_data_block_t::ieee_id_of(block_bytes)) {
    case cta_hdmi_vsdb_t::own_ieee_id:
      return std::make_unique<cta_hdmi_vsdb_t>(block_bytes);
    case cta_hdmi_forum_vsdb_t::own_ieee_id:
      return std::make_unique<cta_hdmi_forum_vsdb_t>(block_bytes);
    default:
      return std::make_unique<cta_vendor_specific_data_block_t>(block_bytes);
  }
}

std::unique_ptr<cta_data_block_t> make_extended_data_block(std::span<const uint8_t> block_bytes) {
  if (block_bytes.size() < 2 || !is_known_extended_tag(block_bytes[1])) {
    return nullptr;
  }
  switch (block_bytes[1]) {
    case cta_video_capability_exdb_t::own_extended_tag:
      return std::make_unique<cta_video_capability_exdb_t>(block_bytes);
    case cta_colorimetry_exdb_t::own_extended_tag:
      return std::make_unique<cta_colorimetry_exdb_t>(block_bytes);
    case cta_ycc_420_video_exdb_t::own_extended_tag:
      return std::make_unique<cta_ycc_420_video_exdb_t>(block_bytes);
    case cta_ycc_420_capability_exdb_t::own_extended_tag:
      return std::make_unique<cta_ycc_420_capability_exdb_t>(block_bytes);
    default:
      return std::make_unique<cta_extended_data_block_t>(block_bytes);
  }
}

}  // namespace

cta_data_block_t::cta_data_block_t(uint8_t block_tag, std::size_t block_size) {
  data.push_back(static_cast<uint8_t>(block_tag << tag_shift));
  resize(block_size);
}

void cta_data_block_t::resize(std::size_t new_size, uint8_t padding) {
  data.resize(new_size, padding);
  if (new_size - 1 < largest_size) {
    set_bits(0, length_mask, static_cast<uint8_t>(new_size - 1));
  }
}

void cta_data_block_t::grow(std::size_t least) { resize(std::max(size(), least)); }

std::string_view cta_data_block_t::name() const {
  switch (tag()) {
    case cta_audio_data_block_t::own_tag:
      return "CTA Audio Data Block";
    case cta_video_data_block_t::own_tag:
      return "CTA Video Data Block";
    case cta_vendor_specific_data_block_t::own_tag:
      return "CTA Vendor Specific Data Block";
    case speaker_tag:
      return "CTA Speaker Data Block";
    case vesa_transfer_characteristic_tag:
      return "CTA VESA Display Transfer Characteristic Block";
    case cta_extended_data_block_t::own_tag:
      return "CTA Extended Data Block";
    default:
      return "Undefined CTA Data Block Tag";
  }
}

void cta_data_block_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

std::unique_ptr<cta_data_block_t> make_cta_data_block(std::span<const uint8_t> block_bytes) {
  if (block_bytes.empty()) {
    return nullptr;
  }
  switch (block_bytes.front() >> tag_shift) {
    case cta_audio_data_block_t::own_tag:
      return std::make_unique<cta_audio_data_block_t>(block_bytes);
    case cta_video_data_block_t::own_tag:
      return std::make_unique<cta_video_data_block_t>(block_bytes);
    case cta_vendor_specific_data_block_t::own_tag:
      return make_vendor_data_block(block_bytes);
    case speaker_tag:
    case vesa_transfer_characteristic_tag:
      return std::make_unique<cta_data_block_t>(block_bytes);
    case cta_extended_data_block_t::own_tag:
      return make_extended_data_block(block_bytes);
    default:
      return nullptr;
  }
}

}  // namespace edid_lib
