#pragma once

#include <vector>

#include "edid_lib/cta_vendor_data_blocks.h"
#include "edid_lib/vid_resolution.h"

namespace edid_lib {

/// The HDMI vendor block (HDMI 1.4b, section 8.3.2):
///
///     4    source physical address, big-endian
///     6    bit 7 ACP, ISRC1 and ISRC2 packets; deep colour: 6 48 bit, 5 36 bit, 4 30 bit, 3 YCC 4:4:4; 0 dual DVI
///     7    greatest TMDS clock, in 5 MHz
///     8    bit 7 latencies, 6 interlaced latencies, 5 HDMI video
///     9    latency of video and of sound, then both for interlaced video, each pair if byte 8 tells of it
///     ..   if byte 8 tells of HDMI video: 3D flags; lengths of the lists of HDMI VICs (bits 5 to 7) and of 3D
///          structures (bits 0 to 4); and the lists
///
/// Setters make the block as long as they need it, unless they say otherwise; one without bytes gets no tag by that.
class cta_hdmi_vsdb_t final : public cta_vendor_specific_data_block_t {
 public:
  static constexpr uint32_t own_ieee_id = 0x000C03;
  static constexpr std::size_t most_hdmi_vics = 7;
  using cta_vendor_specific_data_block_t::cta_vendor_specific_data_block_t;

  /// A block of 6 bytes, with no physical address yet, 0xFFFF.
  cta_hdmi_vsdb_t();

  std::unique_ptr<cta_data_block_t> clone() const override { return std::make_unique<cta_hdmi_vsdb_t>(*this); }
  bool valid() const override;
  std::string_view name() const override { return "CTA HDMI Vendor-Specific Data Block"; }
  void accept(visitor_t* visitor, bool forward) override;

  /// 0xFFFFFFFF if the block is too short for one; it is not stored then.
  uint32_t physical_address() const;
  void set_physical_address(uint16_t address);

  bool supports_ai() const { return has_mask(6, 0x80); }
  void set_supports_ai(bool on) { set_capability(0x80, on); }
  bool deep_color_48bit() const { return has_mask(6, 0x40); }
  void set_deep_color_48bit(bool on) { set_capability(0x40, on); }
  bool deep_color_36bit() const { return has_mask(6, 0x20); }
  void set_deep_color_36bit(bool on) { set_capability(0x20, on); }
  bool deep_color_30bit() const { return has_mask(6, 0x10); }
  void set_deep_color_30bit(bool on) { set_capability(0x10, on); }
  bool deep_color_ycc_444() const { return has_mask(6, 0x08); }
  void set_deep_color_ycc_444(bool on) { set_capability(0x08, on); }
  bool dvi_dual() const { return has_mask(6, 0x01); }
  void set_dvi_dual(bool on) { set_capability(0x01, on); }

  /// 0 if the block does not tell. Setting stores at most 1275.
  uint32_t max_tmds_mhz() const { return byte(7) * 5U; }
  void set_max_tmds_mhz(uint32_t megahertz);

  /// What is told of behind byte 8. The setters change the bit alone, and only where the byte is there.
  bool latency_present() const { return has_mask(8, 0x80); }
  void set_latency_present(bool on) { set_mask(8, 0x80, on); }
  bool interlaced_latency_present() const { return has_mask(8, 0x40); }
  void set_interlaced_latency_present(bool on) { set_mask(8, 0x40, on); }
  bool hdmi_video_present() const { return has_mask(8, 0x20); }
  void set_hdmi_video_present(bool on) { set_mask(8, 0x20, on); }

  /// Where the lengths of the lists stand; 0xFFFFFFFF without HDMI video.
  uint32_t vic_length_offset() const;

  /// How long the list of HDMI VICs is told to be; the block may end before it.
  uint32_t hdmi_vic_count() const;

  /// The HDMI VICs that are there, also those that mean no mode. They live as long as this block is not changed.
  std::span<const uint8_t> hdmi_vics() const;

  /// The modes of the HDMI VICs 1 to 4, in the order of the list.
  std::vector<vid_resolution_t> modes() const;

  /// The same, behind what is in `list`.
  void append_modes(std::vector<vid_resolution_t>& list) const;

  /// Empties the list of HDMI VICs; what stands behind it moves up. Nothing for a block without one.
  void clear_hdmi_vics();

  /// Appends the HDMI VIC of `mode`, also if it is there already. False without change for a block without list, with
  /// seven HDMI VICs, without room for another byte, and for a mode that has no HDMI VIC.
  bool add(const vid_resolution_t& mode);

 private:
  void set_capability(uint8_t mask, bool on);
  bool has_vic_list() const { return vic_length_offset() < size(); }
  void tell_vic_count(std::size_t count);
};

}  // namespace edid_lib
