#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "lnx/src/cmsg.h"
#include "zyl/datastream.h"

namespace eipc {

/// What a message is: ordered by family, then type.
struct message_type {
  int32_t family = 0;
  int32_t type = 0;

  // NOLINTNEXTLINE(modernize-use-nullptr): clang-tidy 14 sees a zero in what the compiler makes of it
  auto operator<=>(const message_type&) const = default;
};

/// A message of any type: a bundle of fields that can be written.
class message_base_t {
 public:
  message_base_t() = default;
  message_base_t(const message_base_t&) = default;
  message_base_t& operator=(const message_base_t&) = default;
  message_base_t(message_base_t&&) = default;
  message_base_t& operator=(message_base_t&&) = default;
  virtual ~message_base_t() = default;

  /// Writes the payload to `out` and returns it. Descriptors that travel beside it are appended to `cmsgs`.
  virtual zyl::datastream_t& serialize(zyl::datastream_t& out, std::vector<lnx::cmsg_t>& cmsgs) const = 0;
};

/// The header in front of every payload, 16 bytes:
///
///   offset 0  u32 family    4  u32 type    8  u32 len: payload bytes, header excluded    12  u32 crc of the payload
///
/// Senders fill `crc` in. Receivers deliberately do not check it: only `len` must be right.
class common_t : public message_base_t {
 public:
  static constexpr std::size_t wire_size = 16;

  zyl::datastream_t& serialize(zyl::datastream_t& out, std::vector<lnx::cmsg_t>& cmsgs) const override;

  uint32_t family = 0;
  uint32_t type = 0;
  uint32_t len = 0;
  uint32_t crc = 0;
};

/// Fields that the stream is too short for become 0.
zyl::datastream_t& operator>>(zyl::datastream_t& in, common_t& out_header);

}  // namespace eipc
