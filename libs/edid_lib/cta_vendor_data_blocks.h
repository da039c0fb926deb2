#pragma once

#include "edid_lib/cta_data_block.h"

namespace edid_lib {

/// Tag 3: the IEEE id of a vendor, little-endian in bytes 1 to 3, and what that vendor defines.
class cta_vendor_specific_data_block_t : public cta_data_block_t {
 public:
  static constexpr uint8_t own_tag = 3;
  using cta_data_block_t::cta_data_block_t;

  /// A block of just an id.
  explicit cta_vendor_specific_data_block_t(uint32_t id) : cta_vendor_specific_data_block_t(id, 4) {}

  uint8_t tag() const override { return own_tag; }
  std::unique_ptr<cta_data_block_t> clone() const override {
    return std::make_unique<cta_vendor_specific_data_block_t>(*this);
  }

  /// False for a block too short for an id, which is kept all the same.
  bool valid() const override;

  /// 0xFFFFFFFF if the block is too short for one.
  uint32_t ieee_id() const { return ieee_id_of(data); }
  static uint32_t ieee_id_of(std::span<const uint8_t> block_bytes);

  /// Nothing if the block is too short for one.
  void set_ieee_id(uint32_t id);

 protected:
  cta_vendor_specific_data_block_t(uint32_t id, std::size_t block_size);
};

/// The HDMI Forum vendor block (HDMI 2.0, section 10.3.2):
///
///     4    version, 1
///     5    greatest TMDS character rate, in 5 MHz; 0 up to 340 MHz
///     6    bit 7 SCDC, 6 read request, 3 scrambling up to 340 MHz, 0 3D OSD disparity
///     7    deep colour with 4:2:0 sampling: bit 2 48 bit, 1 36 bit, 0 30 bit
class cta_hdmi_forum_vsdb_t final : public cta_vendor_specific_data_block_t {
 public:
  static constexpr uint32_t own_ieee_id = 0xC45DD8;
  using cta_vendor_specific_data_block_t::cta_vendor_specific_data_block_t;

  /// A block of version 1 that tells nothing.
  cta_hdmi_forum_vsdb_t();

  std::unique_ptr<cta_data_block_t> clone() const override { return std::make_unique<cta_hdmi_forum_vsdb_t>(*this); }

  /// False for another id or version.
  bool valid() const override;
  std::string_view name() const override { return "CTA HDMI Forum Vendor-Specific Data Block"; }
  void accept(visitor_t* visitor, bool forward) override;

  uint8_t version() const { return byte(4); }

  /// In MHz. Setting stores 0 below 340, which the HDMI vendor block can tell, and at most 1275. To set it to 0 does
  /// nothing.
  uint32_t max_tmds_rate() const { return byte(5) * 5U; }
  void set_max_tmds_rate(uint32_t megahertz);

  bool scdc_present() const { return has_mask(6, 0x80); }
  bool read_request_capable() const { return has_mask(6, 0x40); }
  bool scrambles_up_to_340_mhz() const { return has_mask(6, 0x08); }
  bool osd_disparity_3d() const { return has_mask(6, 0x01); }
  void set_osd_disparity_3d(bool on) { set_mask(6, 0x01, on); }

  bool deep_color_420_48bit() const { return has_mask(7, 0x04); }
  bool deep_color_420_36bit() const { return has_mask(7, 0x02); }
  void set_deep_color_420_36bit(bool on) { set_mask(7, 0x02, on); }
  bool deep_color_420_30bit() const { return has_mask(7, 0x01); }
  void set_deep_color_420_30bit(bool on) { set_mask(7, 0x01, on); }
};

}  // namespace edid_lib
