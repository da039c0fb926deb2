// Ancillary records: a control buffer as recvmsg(2) fills it.
#include "lnx/src/cmsg.h"

#include <cstring>
#include <functional>

#include "fuzz/target.h"

namespace {

using fuzz::require;

bool lies_in(std::span<const std::byte> part, std::span<const std::byte> whole, std::size_t offset) {
  return offset + part.size() <= whole.size() &&
         std::equal(part.begin(), part.end(), whole.begin() + static_cast<std::ptrdiff_t>(offset));
}

/// The kernel's layout: each record begins on a boundary of eight bytes.
std::size_t padded(std::size_t size) { return (size + 7) / 8 * 8; }

/// Each record is a copy of its own stretch of the buffer. Gives where the last one ends.
std::size_t check_places(const std::vector<lnx::cmsg_t>& records, std::span<const std::byte> control) {
  std::size_t offset = 0;
  for (const lnx::cmsg_t& record : records) {
    require(record.image().size() >= lnx::cmsg_t::header_size, "a record has its header");
    require(lies_in(record.image(), control, offset), "a record is what the buffer holds in its place");
    offset += padded(record.image().size());
  }
  return offset;
}

/// Where the records end there is none: no room for a header, or one that tells too little or more than there is.
void check_end(std::span<const std::byte> control, std::size_t end) {
  if (end + lnx::cmsg_t::header_size > control.size()) {
    return;
  }
  std::size_t told = 0;
  std::memcpy(&told, control.data() + end, sizeof told);
  require(told < lnx::cmsg_t::header_size || told > control.size() - end, "no record is left out");
}

void check_descriptor(const lnx::cmsg_t& record) {
  if (!record.has_fd()) {
    return;
  }
  const lnx::cmsg_t again = lnx::cmsg_t::rights(record.fd());
  require(again.has_fd() && again.fd() == record.fd(), "a descriptor that is passed on is the same");
  require(record.level() == again.level() && record.type() == again.type(), "only such records pass descriptors");
}

std::vector<std::byte> joined(const std::vector<lnx::cmsg_t>& records) {
  std::vector<std::byte> control;
  for (const lnx::cmsg_t& record : records) {
    const auto image = record.image();
    control.insert(control.end(), image.begin(), image.end());
    control.resize(padded(control.size()));
  }
  return control;
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  const auto control = std::as_bytes(std::span(data, size));
  const auto records = lnx::parse_cmsgs(control);
  check_end(control, check_places(records, control));
  for (const lnx::cmsg_t& record : records) {
    check_descriptor(record);
  }
  const auto again = lnx::parse_cmsgs(joined(records));
  require(again.size() == records.size(), "records that are sent on are as many");
  for (std::size_t i = 0; i < records.size(); ++i) {
    const auto image = records[i].image();
    require(std::equal(image.begin(), image.end(), again[i].image().begin(), again[i].image().end()),
            "a record that is sent on is the same");
  }
  return 0;
}
