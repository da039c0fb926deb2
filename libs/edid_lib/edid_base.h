#pragma once

#include <memory>
#include <vector>

#include "edid_lib/base_descriptor_block.h"
#include "edid_lib/det_timings_block.h"
#include "edid_lib/edid_block.h"
#include "edid_lib/est_timings_block.h"
#include "edid_lib/std_timings_block.h"

namespace edid_lib {

/// The base block of an EDID, 128 bytes (E-EDID 1.4, section 3):
///
///     0    header 00 FF FF FF FF FF FF 00
///     18   version, revision
///     20   input definition: bit 7 digital
///     24   features: bits 3 and 4 colour type, bit 1 the preferred timing is native
///     35   established timings, 3 bytes
///     38   standard timings, 16 bytes
///     54   four times 18 bytes: one or two detailed timings, then descriptors
///     126  number of extensions, checksum
///
/// Input is repaired, never refused: size, header, version, revision, digital input and native preferred timing are
/// put right. The checksum is not looked at. The timing blocks and descriptors have copies of their bytes.
class edid_base_t final : public edid_block_t {
 public:
  explicit edid_base_t(std::span<const uint8_t> edid_bytes);

  /// False without 640x480@60 among the established timings.
  bool valid() const override;
  std::string_view name() const override { return "EDID Base Block"; }
  void accept(visitor_t* visitor, bool forward) override;

  /// Brings the bytes that mean something else in EDID 1.3 in line with it; nothing for other versions.
  virtual void on_revision_change();

  uint8_t version() const { return byte(18); }
  uint8_t revision() const { return byte(19); }
  bool digital_input() const { return has_mask(20, 0x80); }

  /// Colour type by the number that `set_color_type` takes: 1 and 2 as EDID 1.3 counts, 3 to 5 by colour encodings of
  /// EDID 1.4, 6 undefined.
  uint8_t color_type() const;
  void set_color_type(uint8_t type);

  const std::vector<std::unique_ptr<base_descriptor_block_t>>& descriptors() const { return descriptor_list; }

 private:
  bool is_version(uint8_t version_number, uint8_t revision_number) const;
  void repair();
  void parse_blocks();

  est_timings_block_t established;
  std_timings_block_t standard;
  det_timings_block_t detailed;
  std::vector<std::unique_ptr<base_descriptor_block_t>> descriptor_list;
};

}  // namespace edid_lib
