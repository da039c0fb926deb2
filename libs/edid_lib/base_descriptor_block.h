#pragma once

#include <memory>
#include <string>

#include "edid_lib/edid_block.h"

namespace edid_lib {

/// A display descriptor of the base block (E-EDID 1.4, section 3.10.3): 18 bytes, with the tag in byte 3 and what it
/// says from byte 5 on.
class base_descriptor_block_t : public edid_block_t {
 public:
  /// Copies 18 bytes, padding with 0; `block_offset` is the position in the base block.
  base_descriptor_block_t(uint32_t block_offset, std::span<const uint8_t> block_bytes);

  virtual uint8_t tag() const { return data[3]; }
  virtual uint32_t length() const { return 18; }
  virtual uint32_t offset() const { return position; }

  /// By tag.
  std::string_view name() const override;
  void accept(visitor_t* visitor, bool forward) override;

 protected:
  /// Bytes 5 to 17 without the white space at their end.
  std::string text_field() const;

 private:
  uint32_t position;
};

/// Tag 0xFC.
class monitor_name_base_block_t final : public base_descriptor_block_t {
 public:
  static constexpr uint8_t own_tag = 0xFC;
  using base_descriptor_block_t::base_descriptor_block_t;

  bool valid() const override { return tag() == own_tag; }
  void accept(visitor_t* visitor, bool forward) override;
  std::string text() const { return text_field(); }
};

/// Tag 0xFF.
class monitor_serial_base_block_t final : public base_descriptor_block_t {
 public:
  static constexpr uint8_t own_tag = 0xFF;
  using base_descriptor_block_t::base_descriptor_block_t;

  bool valid() const override { return tag() == own_tag; }
  void accept(visitor_t* visitor, bool forward) override;
  std::string text() const { return text_field(); }
};

/// Tag 0xFE.
class ascii_string_base_block_t final : public base_descriptor_block_t {
 public:
  static constexpr uint8_t own_tag = 0xFE;
  using base_descriptor_block_t::base_descriptor_block_t;

  bool valid() const override { return tag() == own_tag; }
  void accept(visitor_t* visitor, bool forward) override;
  std::string text() const { return text_field(); }
};

/// The descriptor object for the tag in `block_bytes`; never null.
std::unique_ptr<base_descriptor_block_t> make_base_descriptor(uint32_t offset, std::span<const uint8_t> block_bytes);

}  // namespace edid_lib
