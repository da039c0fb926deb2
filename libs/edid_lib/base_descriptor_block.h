#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "edid_lib/edid_block.h"

namespace edid_lib {

/// A display descriptor of the base block (E-EDID 1.4, section 3.10.3): 18 bytes, with the tag in byte 3 and what it
/// says from byte 5 on.
class base_descriptor_block_t : public edid_block_t {
 public:
  /// Copies 18 bytes, padding with 0; `block_offset` is the position in the base block.
  base_descriptor_block_t(uint32_t block_offset, std::span<const uint8_t> block_bytes);

  virtual uint8_t tag() const { return byte(3); }
  virtual uint32_t length() const { return 18; }
  virtual uint32_t offset() const { return position; }

  /// A descriptor of the same class, place and bytes, whatever these would be read as by now. Every class has its own.
  virtual std::unique_ptr<base_descriptor_block_t> clone() const {
    return std::make_unique<base_descriptor_block_t>(*this);
  }

  /// By tag.
  std::string_view name() const override;
  void accept(visitor_t* visitor, bool forward) override;

 protected:
  /// An empty text of tag `text_tag` if `block_bytes` are too short to have a tag of their own.
  base_descriptor_block_t(uint32_t block_offset, std::span<const uint8_t> block_bytes, uint8_t text_tag);

  /// Bytes 5 to 17 without the white space at their end.
  std::string text_field() const;

  /// Stores at most 12 characters, one less than there is room for, a line feed, and blanks.
  void set_text_field(std::string_view text);

 private:
  uint32_t position;
};

/// Tag 0xFC. All three texts: fewer than 4 bytes make an empty text. Reading gives up to 13 characters, without white
/// space at the end; writing stores up to 12.
class monitor_name_base_block_t final : public base_descriptor_block_t {
 public:
  static constexpr uint8_t own_tag = 0xFC;

  explicit monitor_name_base_block_t(uint32_t block_offset, std::span<const uint8_t> block_bytes = {})
      : base_descriptor_block_t(block_offset, block_bytes, own_tag) {}

  std::unique_ptr<base_descriptor_block_t> clone() const override {
    return std::make_unique<monitor_name_base_block_t>(*this);
  }
  bool valid() const override { return tag() == own_tag; }
  void accept(visitor_t* visitor, bool forward) override;
  std::string text() const { return text_field(); }
  void set_text(std::string_view text) { set_text_field(text); }
};

/// Tag 0xFF.
class monitor_serial_base_block_t final : public base_descriptor_block_t {
 public:
  static constexpr uint8_t own_tag = 0xFF;

  explicit monitor_serial_base_block_t(uint32_t block_offset, std::span<const uint8_t> block_bytes = {})
      : base_descriptor_block_t(block_offset, block_bytes, own_tag) {}

  std::unique_ptr<base_descriptor_block_t> clone() const override {
    return std::make_unique<monitor_serial_base_block_t>(*this);
  }
  bool valid() const override { return tag() == own_tag; }
  void accept(visitor_t* visitor, bool forward) override;
  std::string text() const { return text_field(); }
  void set_text(std::string_view text) { set_text_field(text); }
};

/// Tag 0xFE.
class ascii_string_base_block_t final : public base_descriptor_block_t {
 public:
  static constexpr uint8_t own_tag = 0xFE;

  explicit ascii_string_base_block_t(uint32_t block_offset, std::span<const uint8_t> block_bytes = {})
      : base_descriptor_block_t(block_offset, block_bytes, own_tag) {}

  std::unique_ptr<base_descriptor_block_t> clone() const override {
    return std::make_unique<ascii_string_base_block_t>(*this);
  }
  bool valid() const override { return tag() == own_tag; }
  void accept(visitor_t* visitor, bool forward) override;
  std::string text() const { return text_field(); }
  void set_text(std::string_view text) { set_text_field(text); }
};

/// The descriptor object for the tag in `block_bytes`; never null.
std::unique_ptr<base_descriptor_block_t> make_base_descriptor(uint32_t offset, std::span<const uint8_t> block_bytes);

}  // namespace edid_lib
