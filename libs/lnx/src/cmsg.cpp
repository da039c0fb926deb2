#include "lnx/src/cmsg.h"

#include <algorithm>
#include <cstring>

namespace lnx {
namespace {

static_assert(sizeof(cmsghdr) == 16, "the image is that of a 64-bit system");

/// The kernel starts each record of a control buffer on such a boundary.
constexpr std::size_t record_alignment = 8;

cmsghdr header_of(std::span<const std::byte> bytes) {
  cmsghdr header{};
  std::memcpy(&header, bytes.data(), sizeof header);
  return header;
}

}  // namespace

cmsg_t cmsg_t::rights(int32_t fd) {
  cmsghdr header{};
  header.cmsg_len = CMSG_LEN(sizeof fd);
  header.cmsg_level = SOL_SOCKET;
  header.cmsg_type = SCM_RIGHTS;
  std::vector<std::byte> image(CMSG_SPACE(sizeof fd));
  std::memcpy(image.data(), &header, sizeof header);
  std::memcpy(image.data() + header_size, &fd, sizeof fd);
  return cmsg_t(image);
}

cmsg_t::cmsg_t(std::span<const std::byte> record) : bytes(record.begin(), record.end()) {}

cmsghdr cmsg_t::header() const { return header_of(bytes); }

std::span<const std::byte> cmsg_t::image() const { return std::span(bytes).first(header().cmsg_len); }

bool cmsg_t::has_fd() const {
  return level() == SOL_SOCKET && type() == SCM_RIGHTS && data().size() >= sizeof(int32_t);
}

int32_t cmsg_t::fd() const {
  int32_t value = -1;
  std::memcpy(&value, data().data(), sizeof value);
  return value;
}

std::vector<cmsg_t> parse_cmsgs(std::span<const std::byte> control) {
  std::vector<cmsg_t> records;
  while (control.size() >= cmsg_t::header_size) {
    const std::size_t length = header_of(control).cmsg_len;
    if (length < cmsg_t::header_size || length > control.size()) {
      break;
    }
    records.emplace_back(control.first(length));
    const std::size_t step = (length + record_alignment - 1) / record_alignment * record_alignment;
    control = control.subspan(std::min(step, control.size()));
  }
  return records;
}

}  // namespace lnx
