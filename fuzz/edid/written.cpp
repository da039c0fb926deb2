#include "fuzz/edid/support.h"

namespace fuzz::edid {
namespace {

using edid_lib::cta_extension_t;
using edid_lib::edid_t;

constexpr std::size_t checksum_at = 127;

/// Whether an extension finds its timings again: there is room for all of them behind the data blocks, and the first
/// does not hide them by the low byte of its clock.
bool finds_timings(const cta_extension_t& extension, std::size_t offset) {
  const auto* timings = extension.detailed_timings();
  if (timings == nullptr || timings->modes().empty()) {
    return true;
  }
  return offset < checksum_at && timings->size() <= (checksum_at - offset) / 18 * 18 && timings->byte(0) != 0;
}

/// Whether everything in an extension comes back from its bytes.
bool fits(const cta_extension_t* extension) {
  if (extension == nullptr) {
    return true;
  }
  std::size_t offset = 4;
  for (const auto& block : extension->data_blocks()) {
    offset += block->size();
  }
  return offset <= checksum_at && finds_timings(*extension, offset);
}

void check_bytes(const edid_t& edid, std::span<const uint8_t> bytes) {
  const bool has_extension = edid.cta() != nullptr;
  require(bytes.size() == (has_extension ? 256 : 128), "an EDID is one block or two");
  require(sums_up(bytes.first(128)) && sums_up(bytes.subspan(128)), "checksums are right");
  require(bytes[126] == (has_extension ? 1 : 0), "the extension is counted");
}

/// Blocks come back in their order, but for those that do not fit.
void check_blocks(const cta_extension_t& written, const cta_extension_t& again) {
  std::size_t offset = 4;
  std::size_t at = 0;
  for (const auto& block : written.data_blocks()) {
    if (offset + block->size() > checksum_at) {
      continue;
    }
    offset += block->size();
    require(at < again.data_blocks().size(), "a block that fits comes back");
    const auto& same = again.data_blocks()[at++];
    require(same->name() == block->name(), "as a block of its kind");
    require(same_bytes(same->bytes().subspan(1), block->bytes().subspan(1)), "with its bytes");
  }
  require(at == again.data_blocks().size(), "and nothing else");
}

}  // namespace

void check_written(edid_t& edid) {
  const auto bytes = edid.assemble();
  check_bytes(edid, bytes);
  edid_t again(bytes);
  require((again.cta() != nullptr) == (edid.cta() != nullptr), "the parts come back");
  if (edid.cta() != nullptr) {
    check_blocks(*edid.cta(), *again.cta());
  }
  if (fits(edid.cta())) {
    require(are_same(modes_of(again), modes_of(edid)), "what fits has the same modes when it is parsed again");
  }
  const auto second = again.assemble();
  edid_t third(second);
  require(third.assemble() == second, "what was written and parsed is written the same");
  require(are_same(modes_of(third), modes_of(again)), "with the same modes");
}

}  // namespace fuzz::edid
