#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "edid_lib/base_descriptor_block.h"
#include "edid_lib/chromaticity.h"
#include "edid_lib/det_timings_block.h"
#include "edid_lib/edid_block.h"
#include "edid_lib/est_timings_block.h"
#include "edid_lib/std_timings_block.h"

namespace edid_lib {

/// The base block of an EDID, 128 bytes (E-EDID 1.4, section 3):
///
///     0    header 00 FF FF FF FF FF FF 00
///     8    manufacturer, three letters of 5 bits, big-endian; product code, 16 bits; serial number, 32 bits
///     16   week, year - 1990 of making
///     18   version, revision
///     20   input definition: bit 7 digital; in EDID 1.4 bits 4 to 6 colour depth, 0 to 3 interface
///     21   width, height in cm
///     23   gamma * 100 - 100
///     24   features: bit 7 standby, 6 suspend, 5 active off, 3 and 4 colour type, 2 sRGB is the default colour space,
///          1 the preferred timing is native, 0 continuous frequency
///     25   chromaticity, 10 bytes
///     35   established timings, 3 bytes
///     38   standard timings, 16 bytes
///     54   four times 18 bytes: one or two detailed timings, then descriptors
///     126  number of extensions, checksum
///
/// Input is repaired, never refused: size, header, version, revision, digital input and native preferred timing are
/// put right. The checksum is not looked at. The timing blocks and descriptors have copies of their bytes, which find
/// their way back in `assemble`.
class edid_base_t final : public edid_block_t {
 public:
  /// No bytes; all timing blocks are empty, with room for two detailed timings.
  edid_base_t();
  explicit edid_base_t(std::span<const uint8_t> edid_bytes);
  ~edid_base_t() override = default;

  edid_base_t(const edid_base_t& other);
  edid_base_t& operator=(const edid_base_t& other);
  edid_base_t(edid_base_t&&) = default;
  edid_base_t& operator=(edid_base_t&&) = default;

  /// A block to build up: EDID 1.3, digital, and no timings, room for two detailed ones, no descriptors.
  void reset() override;

  /// Whether the preferred timing is native, 640x480@60 is among the established timings, and every descriptor is
  /// valid. Parsing sees to the first and the last, so a parsed block is invalid for lack of 640x480@60 alone.
  bool valid() const override;
  std::string_view name() const override { return "EDID Base Block"; }
  void accept(visitor_t* visitor, bool forward) override;

  /// Brings the bytes that mean something else in EDID 1.3 in line with it; nothing for other versions.
  virtual void on_revision_change();

  bool has_header() const;
  void set_header();

  /// Three letters; what is no letter is told as the character that its 5 bits give above '@'. Setting takes up to
  /// three characters, the missing ones become '@'.
  std::string manufacturer_id() const;
  void set_manufacturer_id(std::string_view id);

  uint16_t product_code() const;
  void set_product_code(uint16_t code);

  uint32_t serial_number() const;
  std::string serial_number_text() const;
  void set_serial_number(uint32_t number);

  /// Week of making, 1 to 53; other weeks are stored as 0.
  uint8_t week() const { return byte(16); }
  void set_week(uint32_t week);

  /// Year of making, 1990 to 2245; earlier years are stored as 1990, later ones as 2245.
  uint32_t year() const;
  void set_year(uint32_t year);

  /// Setting stores version 1, whatever is asked for.
  uint8_t version() const { return byte(18); }
  void set_version(uint8_t version);

  /// Setting stores 4 or 3, and has the rest follow.
  uint8_t revision() const { return byte(19); }
  void set_revision(uint8_t revision);

  bool digital_input() const { return has_mask(20, 0x80); }
  void set_digital_input(bool on) { set_mask(20, 0x80, on); }

  /// Bits of a colour: 6, 8, 10, 12, 14 or 16, others are undefined, 0. For EDID 1.4 only: otherwise 0, and not stored.
  uint8_t color_depth() const;
  void set_color_depth(uint8_t depth);

  /// 0 undefined, 1 DVI, 2 HDMI a, 3 HDMI b, 4 MDDI, 5 DisplayPort; others are read and stored as 0. For EDID 1.4
  /// only: otherwise 0, and not stored.
  uint8_t digital_interface() const;
  void set_digital_interface(uint8_t interface_number);

  uint8_t h_size_cm() const { return byte(21); }
  void set_h_size_cm(uint8_t centimetres) { set_byte(21, centimetres); }
  uint8_t v_size_cm() const { return byte(22); }
  void set_v_size_cm(uint8_t centimetres) { set_byte(22, centimetres); }

  /// 1.0 to 3.55, the last meaning none. Setting rounds to the nearest hundredth; what is outside 1.0 to 3.54 is not
  /// stored.
  float gamma() const;
  void set_gamma(float gamma);

  bool standby() const { return has_mask(24, 0x80); }
  void set_standby(bool on) { set_mask(24, 0x80, on); }
  bool suspend() const { return has_mask(24, 0x40); }
  void set_suspend(bool on) { set_mask(24, 0x40, on); }
  bool active_off() const { return has_mask(24, 0x20); }
  void set_active_off(bool on) { set_mask(24, 0x20, on); }
  bool srgb_default() const { return has_mask(24, 0x4); }
  void set_srgb_default(bool on) { set_mask(24, 0x4, on); }
  bool preferred_native() const { return has_mask(24, 0x2); }
  void set_preferred_native(bool on) { set_mask(24, 0x2, on); }
  bool continuous_frequency() const { return has_mask(24, 0x1); }
  void set_continuous_frequency(bool on) { set_mask(24, 0x1, on); }

  /// EDID 1.3 tells 0 monochrome, 1 RGB, 2 colours other than RGB, 6 undefined. Others tell 1 RGB 4:4:4, and with it 3
  /// YCC 4:4:4, 4 YCC 4:2:2, 5 both.
  ///
  /// Setting stores RGB for what EDID 1.3 and 1.4 have no bits for. Other versions take the bits of type 3 alone.
  uint8_t color_type() const;
  void set_color_type(uint8_t type);

  /// With the gamma. All zero for a block too short for it, which is then not written either.
  chromaticity_t chromaticity() const;
  void set_chromaticity(const chromaticity_t& chromaticity);

  uint8_t extension_count() const { return byte(126); }
  void set_extension_count(uint8_t count) { set_byte(126, count); }

  est_timings_block_t& established() { return established_timings; }
  const est_timings_block_t& established() const { return established_timings; }
  std_timings_block_t& standard() { return standard_timings; }
  const std_timings_block_t& standard() const { return standard_timings; }
  det_timings_block_t& detailed() { return detailed_timings; }
  const det_timings_block_t& detailed() const { return detailed_timings; }

  const std::vector<std::unique_ptr<base_descriptor_block_t>>& descriptors() const { return descriptor_list; }
  void add_descriptor(std::unique_ptr<base_descriptor_block_t> descriptor);

  /// The 128 bytes with those of the timing blocks and descriptors in their places, `extensions` in byte 126, and the
  /// checksum right. Detailed timings and descriptors of nothing but zeros become dummy descriptors.
  std::vector<uint8_t> assemble(uint8_t extensions) const;

 private:
  bool is_version(uint8_t version_number, uint8_t revision_number) const;
  uint32_t little_endian(uint8_t index, uint8_t count) const;
  void set_little_endian(uint8_t index, uint8_t count, uint32_t value);
  void repair();
  void parse_descriptors();

  est_timings_block_t established_timings;
  std_timings_block_t standard_timings;
  det_timings_block_t detailed_timings;
  std::vector<std::unique_ptr<base_descriptor_block_t>> descriptor_list;
};

}  // namespace edid_lib
