#pragma once

#include <vector>

#include "edid_lib/cta_data_block.h"
#include "edid_lib/vid_resolution.h"

namespace edid_lib {

/// Tag 3: the IEEE id of a vendor, little-endian in bytes 1 to 3, and what that vendor defines.
class cta_vendor_specific_data_block_t : public cta_data_block_t {
 public:
  static constexpr uint8_t own_tag = 3;
  using cta_data_block_t::cta_data_block_t;

  uint8_t tag() const override { return own_tag; }

  /// False for a block too short for an id, which is kept all the same.
  bool valid() const override;

  /// 0xFFFFFFFF if the block is too short for one.
  uint32_t ieee_id() const;
};

/// The HDMI vendor block (HDMI 1.4b, section 8.3.2). Bits 7 and 6 of byte 8 tell of two pairs of latencies, bit 5 of a
/// list of HDMI VICs, whose length is in the upper three bits of the byte at `vic_length_offset()`.
class cta_hdmi_vsdb_t final : public cta_vendor_specific_data_block_t {
 public:
  static constexpr uint32_t own_ieee_id = 0x000C03;
  using cta_vendor_specific_data_block_t::cta_vendor_specific_data_block_t;

  bool valid() const override;
  std::string_view name() const override { return "CTA HDMI Vendor-Specific Data Block"; }
  void accept(visitor_t* visitor, bool forward) override;

  /// 0xFFFFFFFF without a list of HDMI VICs.
  uint32_t vic_length_offset() const;

  /// How long the list of HDMI VICs is told to be; the block may end before it.
  uint32_t hdmi_vic_count() const;

  /// The modes of the HDMI VICs 1 to 4, in the order of the list.
  std::vector<vid_resolution_t> modes() const;
};

/// The HDMI Forum vendor block (HDMI 2.0, section 10.3.2), version 1 in byte 4.
class cta_hdmi_forum_vsdb_t final : public cta_vendor_specific_data_block_t {
 public:
  static constexpr uint32_t own_ieee_id = 0xC45DD8;
  using cta_vendor_specific_data_block_t::cta_vendor_specific_data_block_t;

  bool valid() const override;
  std::string_view name() const override { return "CTA HDMI Forum Vendor-Specific Data Block"; }
  void accept(visitor_t* visitor, bool forward) override;
};

}  // namespace edid_lib
