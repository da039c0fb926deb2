#pragma once

#include <sys/socket.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace lnx {

/// One ancillary record of a socket message (cmsg(3)), as an owned copy of its whole image:
///
///   offset 0  u64 cmsg_len, header included    8  s32 cmsg_level    12  s32 cmsg_type    16  data
///
/// A descriptor inside is just a number here: it is not closed with the record. Whoever takes it owns it.
class cmsg_t {
 public:
  /// Bytes in front of the data.
  static constexpr std::size_t header_size = sizeof(cmsghdr);

  /// A record that passes `fd` on: SOL_SOCKET, SCM_RIGHTS, 24 bytes with `cmsg_len` 20.
  static cmsg_t rights(int32_t fd);

  /// A copy of the record at the start of `bytes`, which hold `cmsg_len` bytes at least.
  explicit cmsg_t(std::span<const std::byte> bytes);

  /// The first `cmsg_len` bytes, which is what a sender hands to the kernel.
  std::span<const std::byte> image() const;

  int32_t level() const { return header().cmsg_level; }
  int32_t type() const { return header().cmsg_type; }

  /// What follows the header.
  std::span<const std::byte> data() const { return image().subspan(header_size); }

  /// Whether it passes descriptors, and one at least is there.
  bool has_fd() const;

  /// The first descriptor of a record for which `has_fd` is true.
  int32_t fd() const;

 private:
  cmsghdr header() const;

  std::vector<std::byte> bytes;
};

/// The records in a control buffer that recvmsg(2) has filled. Ends at the first that is shorter than its own header or
/// runs past the end.
std::vector<cmsg_t> parse_cmsgs(std::span<const std::byte> control);

}  // namespace lnx
