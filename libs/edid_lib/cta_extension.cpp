#include "edid_lib/cta_extension.h"

#include <algorithm>

#include "edid_lib/visitor.h"

namespace edid_lib {
namespace {

constexpr std::size_t block_size = 128;
constexpr uint8_t own_revision = 3;
constexpr uint8_t tag_at = 0;
constexpr uint8_t revision_at = 1;
constexpr uint8_t detailed_offset_at = 2;
constexpr std::size_t header_size = 4;
constexpr std::size_t checksum_at = 127;

}  // namespace

cta_extension_t::cta_extension_t(std::span<const uint8_t> extension_bytes)
    : extension_block_t(extension_bytes.first(std::min(extension_bytes.size(), block_size))) {
  data.resize(block_size, 0);
  set_byte(tag_at, own_tag);
  set_byte(revision_at, own_revision);
  parse_data_blocks();
  parse_detailed();
}

void cta_extension_t::parse_data_blocks() {
  const std::size_t end = std::min<std::size_t>(data[detailed_offset_at], block_size);
  for (std::size_t at = header_size; at < end;) {
    const std::size_t told = cta_data_block_t::told_size(data[at]);
    // A block that runs over the end of the list is read as far as the extension reaches.
    const auto block_bytes = bytes().subspan(at, std::min(told, block_size - at));
    if (auto block = make_cta_data_block(block_bytes)) {
      blocks.push_back(std::move(block));
    }
    at += told;
  }
}

void cta_extension_t::parse_detailed() {
  const uint8_t offset = data[detailed_offset_at];
  if (offset == 0 || offset >= block_size || data[offset] == 0) {
    return;
  }
  const auto capacity = static_cast<uint32_t>((checksum_at - offset) / det_timings_block_t::entry_size);
  detailed_block = std::make_unique<det_timings_block_t>(bytes().subspan(offset), offset, capacity);
}

bool cta_extension_t::valid() const {
  return extension_block_t::valid() && byte(revision_at) == own_revision &&
         std::all_of(blocks.begin(), blocks.end(), [](const auto& block) { return block->valid(); }) &&
         (detailed_block == nullptr || detailed_block->valid());
}

void cta_extension_t::accept(visitor_t* visitor, bool forward) {
  if (visitor == nullptr) {
    return;
  }
  if (forward) {
    visitor->visit(this, forward);
  } else if (detailed_block != nullptr) {
    detailed_block->accept(visitor, forward);
  }
  for (const auto& block : blocks) {
    block->accept(visitor, forward);
  }
  if (!forward) {
    visitor->visit(this, forward);
  } else if (detailed_block != nullptr) {
    detailed_block->accept(visitor, forward);
  }
}

}  // namespace edid_lib
