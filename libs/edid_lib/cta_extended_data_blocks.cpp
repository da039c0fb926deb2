#include "edid_lib/cta_extended_data_blocks.h"

#include <algorithm>
#include <iterator>

#include "edid_lib/visitor.h"

namespace edid_lib {
namespace {

constexpr std::size_t payload_at = 2;
constexpr uint8_t metadata_at = 3;

struct named_tag_t {
  uint8_t tag;
  std::string_view name;
};

constexpr named_tag_t named_tags[] = {
    {0, "CTA Video Capability Tag"},
    {1, "CTA Vendor Specific Video Block"},
    {2, "CTA VESA Display Device Block"},
    {3, "CTA VESA Video Timing Extension"},
    {4, "CTA HDMI Video Block"},
    {5, "CTA Colorimetry Block"},
    {6, "CTA HDR Static Metadata Block"},
    {7, "CTA HDR Dynamic Metadata Block"},
    {13, "CTA Video Format Preference Block"},
    {14, "CTA YCC 420 Video Block"},
    {15, "CTA YCC 420 Capability Block"},
    {16, "CTA Misc Audio Block"},
    {17, "CTA Vendor Specific Audio Block"},
    {18, "CTA HDMI Audio Block"},
    {19, "CTA Room Config Block"},
    {20, "CTA Speaker Location Block"},
    {32, "CTA InfoFrame Block"},
};

const named_tag_t* find_tag(uint8_t extended_tag) {
  const auto* const found = std::find_if(std::begin(named_tags), std::end(named_tags),
                                         [=](const named_tag_t& one) { return one.tag == extended_tag; });
  return found != std::end(named_tags) ? found : nullptr;
}

constexpr std::string_view behavior_texts[] = {"No Data", "Always Overscan", "Always Underscan",
                                               "Selectable Overscan or Underscan"};

constexpr std::string_view colorimetry_words[] = {"xvYCC601 ", "xvYCC709 ",   "sYCC601 ",   "opYCC601 ",
                                                  "opRGB ",    "BT2020cYCC ", "BT2020YCC ", "BT2020RGB "};

}  // namespace

std::string_view extended_tag_name(uint8_t extended_tag) {
  const named_tag_t* found = find_tag(extended_tag);
  return found != nullptr ? found->name : "Undefined CTA Extended Data Block Tag";
}

bool is_known_extended_tag(uint8_t extended_tag) { return find_tag(extended_tag) != nullptr; }

cta_extended_data_block_t::cta_extended_data_block_t(uint8_t block_extended_tag, std::size_t block_size)
    : cta_data_block_t(own_tag, block_size) {
  set_byte(1, block_extended_tag);
}

std::string_view cta_extended_data_block_t::extended_name() const { return extended_tag_name(extended_tag()); }

std::string_view text_of(overscan_behavior_t behavior) {
  const auto index = static_cast<uint8_t>(behavior);
  return index < std::size(behavior_texts) ? behavior_texts[index] : "Unknown";
}

void cta_video_capability_exdb_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

void cta_colorimetry_exdb_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

bool cta_colorimetry_exdb_t::set_metadata(uint8_t bits) {
  constexpr uint8_t largest = 15;
  if (bits > largest || size() <= metadata_at) {
    return false;
  }
  set_byte(metadata_at, bits);
  return true;
}

std::string colorimetries_text(uint8_t bits) {
  std::string text;
  for (std::size_t i = 0; i < std::size(colorimetry_words); ++i) {
    if ((bits >> i & 1) != 0) {
      text += colorimetry_words[i];
    }
  }
  return text;
}

void cta_ycc_420_video_exdb_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

std::span<const uint8_t> cta_ycc_420_video_exdb_t::vics() const {
  return bytes().subspan(std::min(payload_at, size()));
}

void cta_ycc_420_video_exdb_t::clear_vics() {
  if (size() > payload_at) {
    resize(payload_at);
  }
}

bool cta_ycc_420_video_exdb_t::add(uint8_t vic) {
  if (size() < payload_at || size() >= largest_size) {
    return false;
  }
  resize(size() + 1, vic);
  return true;
}

void cta_ycc_420_capability_exdb_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

bool cta_ycc_420_capability_exdb_t::contains(std::size_t entry) const {
  const std::size_t at = payload_at + entry / 8;
  return at < size() && (data[at] >> entry % 8 & 1) != 0;
}

bool cta_ycc_420_capability_exdb_t::set(std::size_t entry, bool on) {
  const std::size_t at = payload_at + entry / 8;
  if (size() < payload_at || at >= largest_size) {
    return false;
  }
  if (on) {
    grow(at + 1);
  }
  set_mask(static_cast<uint8_t>(at), static_cast<uint8_t>(1U << entry % 8), on);
  return true;
}

}  // namespace edid_lib
