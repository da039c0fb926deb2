#pragma once

#include <memory>
#include <vector>

#include "edid_lib/cta_data_block.h"
#include "edid_lib/det_timings_block.h"
#include "edid_lib/edid_block.h"

namespace edid_lib {

/// The CTA extension block of an EDID, 128 bytes (CTA-861, section 7.5):
///
///     0    tag 2, revision 3
///     2    d, the offset of the first detailed timing; 0 or 4 without data blocks
///     3    bits 0 to 3: number of native detailed timings
///     4    data blocks, up to d
///     d    detailed timings, 18 bytes each
///     127  checksum
///
/// Tag and revision are put right, the checksum is not looked at. There are detailed timings if the byte at d is not 0,
/// so a first timing whose clock is a multiple of 2.56 MHz hides them all (a 2560x1440 display at 640 MHz does).
class cta_extension_t final : public extension_block_t {
 public:
  static constexpr uint8_t own_tag = 2;

  explicit cta_extension_t(std::span<const uint8_t> extension_bytes);

  uint8_t tag() const override { return own_tag; }
  bool valid() const override;
  std::string_view name() const override { return "CTA Extension"; }

  /// The backward pass, too, shows the data blocks in the order of the list.
  void accept(visitor_t* visitor, bool forward) override;

  /// Number of native detailed timings, those of the base block included.
  uint8_t native_count() const { return byte(3) & 0x0F; }

  const std::vector<std::unique_ptr<cta_data_block_t>>& data_blocks() const { return blocks; }

 private:
  void parse_data_blocks();
  void parse_detailed();

  std::vector<std::unique_ptr<cta_data_block_t>> blocks;
  std::unique_ptr<det_timings_block_t> detailed_block;  ///< Null if there are no detailed timings.
};

}  // namespace edid_lib
