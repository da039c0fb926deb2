#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

#include "zyl/assert.h"

namespace zyl {

/// A stream of bytes that values are serialised to and from. Not shared between threads.
///
/// On the wire: integers of 8, 16 and 32 bits, little-endian unless `swap` is set; booleans as one byte, 0 or 1;
/// strings as a 32-bit length and that many bytes, without terminator. Fields follow each other with no alignment.
class datastream_t {
 public:
  datastream_t() = default;
  datastream_t(const datastream_t&) = default;
  datastream_t& operator=(const datastream_t&) = default;
  datastream_t(datastream_t&&) = default;
  datastream_t& operator=(datastream_t&&) = default;
  virtual ~datastream_t() = default;

  /// Takes up to `n` bytes off the stream into `dst`, or drops them if `dst` is null. Returns how many there were; what
  /// a short read did not fill stays as it was.
  virtual std::size_t read(void* dst, std::size_t n) = 0;

  /// Adds `n` bytes. Returns how many were taken.
  virtual std::size_t write(const void* src, std::size_t n) = 0;

  /// Reverses the bytes of every integer of more than one byte, in both directions.
  bool swap = false;
};

/// The stream over a string in memory: writes append, reads consume from the front.
class datastream_strio_t : public datastream_t {
 public:
  datastream_strio_t() = default;
  explicit datastream_strio_t(std::string content) : buffer(std::move(content)) {}
  datastream_strio_t(const datastream_strio_t&) = default;
  datastream_strio_t& operator=(const datastream_strio_t&) = default;
  ~datastream_strio_t() override = default;

  /// A stream that was moved from is empty and can be written again.
  datastream_strio_t(datastream_strio_t&& other) noexcept { *this = std::move(other); }
  datastream_strio_t& operator=(datastream_strio_t&& other) noexcept;

  std::size_t read(void* dst, std::size_t n) override;
  std::size_t write(const void* src, std::size_t n) override;

  /// What has not been read yet; valid until the next read or write.
  std::string_view data() const { return std::string_view(buffer).substr(position); }

 private:
  std::string buffer;
  std::size_t position = 0;
};

/// The integers that have a form on the wire.
template <typename T>
concept wire_integer = std::integral<T> && !std::same_as<T, bool> && sizeof(T) <= sizeof(uint32_t);

static_assert(std::endian::native == std::endian::little, "the wire's byte order is the device's own");

template <wire_integer T>
datastream_t& operator<<(datastream_t& out, T value) {
  auto bytes = std::bit_cast<std::array<std::byte, sizeof(T)>>(value);
  if (out.swap) {
    std::reverse(bytes.begin(), bytes.end());
  }
  out.write(bytes.data(), bytes.size());
  return out;
}

/// A short read leaves zeros in the bytes that did not come.
template <wire_integer T>
datastream_t& operator>>(datastream_t& in, T& value) {
  std::array<std::byte, sizeof(T)> bytes{};
  in.read(bytes.data(), bytes.size());
  if (in.swap) {
    std::reverse(bytes.begin(), bytes.end());
  }
  value = std::bit_cast<T>(bytes);
  return in;
}

template <std::same_as<bool> T>
datastream_t& operator<<(datastream_t& out, T value) {
  return out << static_cast<uint8_t>(value ? 1 : 0);
}

inline datastream_t& operator>>(datastream_t& in, bool& value) {
  uint8_t byte = 0;
  in >> byte;
  value = byte != 0;
  return in;
}

/// A string whose length does not fit 32 bits ends the process.
inline auto& operator<<(datastream_t& out, const std::string& s) {
  const auto sz = static_cast<uint32_t>(s.size());
  ZYL_ASSERT(sz == s.size());
  out << sz;
  out.write(s.data(), s.size());
  return out;
}

/// Takes what there is when the stream ends before the announced length; memory grows with what arrives only.
datastream_t& operator>>(datastream_t& in, std::string& s);

}  // namespace zyl
