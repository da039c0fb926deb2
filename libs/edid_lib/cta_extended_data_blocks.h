#pragma once

#include <string>

#include "edid_lib/cta_data_block.h"

namespace edid_lib {

/// Tag 7: the second byte is an extended tag (CTA-861, section 7.5).
class cta_extended_data_block_t : public cta_data_block_t {
 public:
  static constexpr uint8_t own_tag = 7;
  using cta_data_block_t::cta_data_block_t;

  uint8_t tag() const override { return own_tag; }
  std::unique_ptr<cta_data_block_t> clone() const override {
    return std::make_unique<cta_extended_data_block_t>(*this);
  }
  virtual uint8_t extended_tag() const { return byte(1); }

  /// Whether there is a second byte, and it has this class's extended tag.
  bool valid() const override { return cta_data_block_t::valid() && size() >= 2 && extended_tag() == byte(1); }

  /// By extended tag; `name()` is that of all blocks of tag 7.
  std::string_view extended_name() const;

 protected:
  /// A block of `block_size` bytes, at least 2, all 0 behind the second.
  cta_extended_data_block_t(uint8_t block_extended_tag, std::size_t block_size);
};

/// "CTA Colorimetry Block"; "Undefined CTA Extended Data Block Tag" for a tag that has no name here.
std::string_view extended_tag_name(uint8_t extended_tag);

/// Whether the extended tag has a name here. Blocks of others are dropped, also those that later editions of CTA-861
/// define.
bool is_known_extended_tag(uint8_t extended_tag);

/// What the display does with a picture that could be shown with or without its edges (CTA-861, section 7.5.6).
enum class overscan_behavior_t : uint8_t { no_data, always_overscan, always_underscan, selectable };

/// "Always Overscan"; "Unknown" for a value that has no text.
std::string_view text_of(overscan_behavior_t behavior);

/// Extended tag 0: whether the display scans over or under, and takes selectable quantisation. Byte 2: bit 7 YCC
/// quantisation, 6 RGB quantisation, 4 and 5 preferred timing, 2 and 3 IT video, 0 and 1 CE video. Setters only add
/// bits, to a block that has the byte.
class cta_video_capability_exdb_t final : public cta_extended_data_block_t {
 public:
  static constexpr uint8_t own_extended_tag = 0;
  using cta_extended_data_block_t::cta_extended_data_block_t;
  cta_video_capability_exdb_t() : cta_extended_data_block_t(own_extended_tag, 3) {}

  uint8_t extended_tag() const override { return own_extended_tag; }
  std::unique_ptr<cta_data_block_t> clone() const override {
    return std::make_unique<cta_video_capability_exdb_t>(*this);
  }
  void accept(visitor_t* visitor, bool forward) override;

  bool quantization_ycc() const { return has_mask(2, 0x80); }
  void set_quantization_ycc(bool on) { add_bits(on ? 1 : 0, 7); }
  bool quantization_rgb() const { return has_mask(2, 0x40); }
  void set_quantization_rgb(bool on) { add_bits(on ? 1 : 0, 6); }
  overscan_behavior_t preferred_timing() const { return behavior_at(4); }
  void set_preferred_timing(overscan_behavior_t behavior) { add_behavior(behavior, 4); }
  overscan_behavior_t it_video() const { return behavior_at(2); }
  void set_it_video(overscan_behavior_t behavior) { add_behavior(behavior, 2); }
  overscan_behavior_t ce_video() const { return behavior_at(0); }
  void set_ce_video(overscan_behavior_t behavior) { add_behavior(behavior, 0); }

 private:
  void add_bits(uint8_t bits, uint8_t shift) { or_mask(2, static_cast<uint8_t>(bits << shift)); }
  void add_behavior(overscan_behavior_t behavior, uint8_t shift) {
    add_bits(static_cast<uint8_t>(behavior) & 3, shift);
  }
  overscan_behavior_t behavior_at(uint8_t shift) const { return overscan_behavior_t((byte(2) >> shift) & 3); }
};

/// Extended tag 5: colorimetries beyond BT.601 and BT.709 (CTA-861, section 7.5.5). Byte 2: bit 7 BT.2020 RGB, 6
/// BT.2020 YCC, 5 BT.2020 constant luminance YCC, 4 opRGB, 3 opYCC 601, 2 sYCC 601, 1 xvYCC 709, 0 xvYCC 601; byte 3:
/// bits 0 to 3 gamut metadata profiles.
class cta_colorimetry_exdb_t final : public cta_extended_data_block_t {
 public:
  static constexpr uint8_t own_extended_tag = 5;
  using cta_extended_data_block_t::cta_extended_data_block_t;
  cta_colorimetry_exdb_t() : cta_extended_data_block_t(own_extended_tag, 4) {}

  uint8_t extended_tag() const override { return own_extended_tag; }
  std::unique_ptr<cta_data_block_t> clone() const override { return std::make_unique<cta_colorimetry_exdb_t>(*this); }
  void accept(visitor_t* visitor, bool forward) override;

  /// Bits of the two bytes; 0 where the block does not have them, and they are not stored then.
  uint8_t colorimetries() const { return byte(2); }
  void set_colorimetries(uint8_t bits) { set_byte(2, bits); }
  uint8_t metadata() const { return byte(3); }

  /// False without change for a value above 15, and for a block without that byte.
  bool set_metadata(uint8_t bits);

  bool bt_2020_rgb() const { return has_mask(2, 0x80); }
  bool bt_2020_ycc() const { return has_mask(2, 0x40); }
  bool bt_2020_cycc() const { return has_mask(2, 0x20); }
  bool op_rgb() const { return has_mask(2, 0x10); }
  bool op_ycc_601() const { return has_mask(2, 0x08); }
  bool sycc_601() const { return has_mask(2, 0x04); }
  bool xvycc_709() const { return has_mask(2, 0x02); }
  bool xvycc_601() const { return has_mask(2, 0x01); }
};

/// The words for the bits of a colorimetry block's byte 2, each with a blank behind it: "BT2020RGB xvYCC601 ".
std::string colorimetries_text(uint8_t bits);

/// Extended tag 14: video identification codes that the display shows with 4:2:0 sampling only, a byte each from
/// byte 2.
class cta_ycc_420_video_exdb_t final : public cta_extended_data_block_t {
 public:
  static constexpr uint8_t own_extended_tag = 14;
  using cta_extended_data_block_t::cta_extended_data_block_t;
  cta_ycc_420_video_exdb_t() : cta_extended_data_block_t(own_extended_tag, 2) {}

  uint8_t extended_tag() const override { return own_extended_tag; }
  std::unique_ptr<cta_data_block_t> clone() const override { return std::make_unique<cta_ycc_420_video_exdb_t>(*this); }
  void accept(visitor_t* visitor, bool forward) override;

  /// They live as long as this block is not changed.
  std::span<const uint8_t> vics() const;

  /// Leaves no codes.
  void clear_vics();

  /// Appends a code. False without change if there is no room.
  bool add(uint8_t vic);
};

/// Extended tag 15: which entries of the video data block the display shows with 4:2:0 sampling, too; a bit each from
/// the lowest of byte 2 on. A block without bits means all of them.
class cta_ycc_420_capability_exdb_t final : public cta_extended_data_block_t {
 public:
  static constexpr uint8_t own_extended_tag = 15;
  using cta_extended_data_block_t::cta_extended_data_block_t;
  cta_ycc_420_capability_exdb_t() : cta_extended_data_block_t(own_extended_tag, 2) {}

  uint8_t extended_tag() const override { return own_extended_tag; }
  std::unique_ptr<cta_data_block_t> clone() const override {
    return std::make_unique<cta_ycc_420_capability_exdb_t>(*this);
  }
  void accept(visitor_t* visitor, bool forward) override;

  /// Whether the block has no bits of its own.
  bool means_all() const { return size() <= 2; }

  /// The bit of an entry of the video data block, counted from 0.
  bool contains(std::size_t entry) const;

  /// Sets or clears the bit of an entry; the block grows where a set bit needs it. False without change for an entry
  /// that no block has room for, and for a block without extended tag.
  bool set(std::size_t entry, bool on);
};

}  // namespace edid_lib
