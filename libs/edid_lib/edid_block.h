#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <span>
#include <string_view>
#include <utility>
#include <vector>

namespace edid_lib {

class visitor_t;

/// The byte that makes the sum of the first `count` of `bytes` and itself 0; 0 for no bytes.
uint8_t checksum_of(std::span<const uint8_t> bytes, std::size_t count);

/// A part of an EDID: owns a copy of its bytes, which it reads and writes through typed accessors. Accessors of bytes
/// that are not there read neutral values and write nothing. No locks: one thread at a time.
class edid_block_t {
 public:
  virtual ~edid_block_t() = default;

  /// Number of bytes.
  virtual std::size_t size() const { return data.size(); }

  /// Makes all bytes the ones of an empty block: 0 unless the class says otherwise.
  virtual void clear();

  /// Back to the start: no bytes unless the class says otherwise.
  virtual void reset() { data.clear(); }

  virtual bool valid() const { return true; }

  /// What the block is, for people.
  virtual std::string_view name() const = 0;

  /// Shows the block and its parts to `visitor`, top down on the forward pass and bottom up on the backward pass. Does
  /// nothing without a visitor.
  virtual void accept(visitor_t* visitor, bool forward) = 0;

  std::span<const uint8_t> bytes() const { return data; }

  /// The byte at `index`; 0 beyond the end.
  uint8_t byte(uint8_t index) const { return index < data.size() ? data[index] : uint8_t{0}; }

  /// Whether a bit of `mask` is set in the byte at `index`; false beyond the end.
  bool has_mask(uint8_t index, uint8_t mask) const { return (byte(index) & mask) != 0; }

  /// Change bits of the byte at `index`; nothing beyond the end.
  void and_mask(uint8_t index, uint8_t mask) { set_byte(index, static_cast<uint8_t>(byte(index) & mask)); }
  void or_mask(uint8_t index, uint8_t mask) { set_byte(index, static_cast<uint8_t>(byte(index) | mask)); }
  void set_mask(uint8_t index, uint8_t mask, bool on);

  /// What the last byte of a block is when its first `count` are these: they and it sum up to 0. A whole block of 128
  /// bytes is right if its `checksum(127)` is its byte 127.
  uint8_t checksum(std::size_t count) const { return checksum_of(data, count); }

 protected:
  edid_block_t() = default;
  explicit edid_block_t(std::span<const uint8_t> block_bytes) : data(block_bytes.begin(), block_bytes.end()) {}
  explicit edid_block_t(std::vector<uint8_t>&& block_bytes) : data(std::move(block_bytes)) {}
  edid_block_t(const edid_block_t&) = default;
  edid_block_t& operator=(const edid_block_t&) = default;
  edid_block_t(edid_block_t&&) = default;
  edid_block_t& operator=(edid_block_t&&) = default;

  /// Change the byte at `index`; nothing beyond the end.
  void set_byte(uint8_t index, uint8_t value);

  /// Change the bits of `mask` in the byte at `index` to those of `value`; nothing beyond the end.
  void set_bits(uint8_t index, uint8_t mask, uint8_t value);

  std::vector<uint8_t> data;
};

/// Writes the bytes in rows of 16 in hexadecimal, each behind the number of the row, the first being 1. What fills no
/// row is left out.
std::ostream& operator<<(std::ostream& out, const edid_block_t& block);

/// An extension block of an EDID: 128 bytes of which the first is the tag.
class extension_block_t : public edid_block_t {
 public:
  using edid_block_t::edid_block_t;

  virtual uint8_t tag() const = 0;
  bool valid() const override { return !data.empty() && data.front() == tag(); }
};

}  // namespace edid_lib
