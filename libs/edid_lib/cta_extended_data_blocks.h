#pragma once

#include "edid_lib/cta_data_block.h"

namespace edid_lib {

/// Tag 7: the second byte is an extended tag (CTA-861, section 7.5).
class cta_extended_data_block_t : public cta_data_block_t {
 public:
  static constexpr uint8_t own_tag = 7;
  using cta_data_block_t::cta_data_block_t;

  uint8_t tag() const override { return own_tag; }
  virtual uint8_t extended_tag() const { return byte(1); }

  /// Whether there is a second byte, and it has this class's extended tag.
  bool valid() const override { return cta_data_block_t::valid() && size() >= 2 && extended_tag() == byte(1); }
};

/// Extended tag 0: whether the display scans over or under, and takes selectable quantisation.
class cta_video_capability_exdb_t final : public cta_extended_data_block_t {
 public:
  static constexpr uint8_t own_extended_tag = 0;
  using cta_extended_data_block_t::cta_extended_data_block_t;

  uint8_t extended_tag() const override { return own_extended_tag; }
  void accept(visitor_t* visitor, bool forward) override;
};

/// Extended tag 5: colorimetries beyond BT.601 and BT.709.
class cta_colorimetry_exdb_t final : public cta_extended_data_block_t {
 public:
  static constexpr uint8_t own_extended_tag = 5;
  using cta_extended_data_block_t::cta_extended_data_block_t;

  uint8_t extended_tag() const override { return own_extended_tag; }
  void accept(visitor_t* visitor, bool forward) override;
};

/// Extended tag 14: video identification codes that the display shows with 4:2:0 sampling only.
class cta_ycc_420_video_exdb_t final : public cta_extended_data_block_t {
 public:
  static constexpr uint8_t own_extended_tag = 14;
  using cta_extended_data_block_t::cta_extended_data_block_t;

  uint8_t extended_tag() const override { return own_extended_tag; }
  void accept(visitor_t* visitor, bool forward) override;
};

/// Extended tag 15: which entries of the video data block the display shows with 4:2:0 sampling, too.
class cta_ycc_420_capability_exdb_t final : public cta_extended_data_block_t {
 public:
  static constexpr uint8_t own_extended_tag = 15;
  using cta_extended_data_block_t::cta_extended_data_block_t;

  uint8_t extended_tag() const override { return own_extended_tag; }
  void accept(visitor_t* visitor, bool forward) override;
};

}  // namespace edid_lib
