#include "edid_lib/cta_extension.h"

#include <algorithm>
#include <utility>

#include "edid_lib/visitor.h"

namespace edid_lib {
namespace {

constexpr std::size_t block_size = 128;
constexpr uint8_t own_revision = 3;
constexpr uint8_t tag_at = 0;
constexpr uint8_t revision_at = 1;
constexpr uint8_t detailed_offset_at = 2;
constexpr uint8_t flags_at = 3;
constexpr std::size_t header_size = 4;
constexpr std::size_t checksum_at = 127;
constexpr std::size_t entry_size = det_timings_block_t::entry_size;

/// How many detailed timings fit from `offset` to the checksum.
uint32_t capacity_from(std::size_t offset) {
  return offset < checksum_at ? static_cast<uint32_t>((checksum_at - offset) / entry_size) : 0;
}

void append(std::vector<uint8_t>& whole, std::span<const uint8_t> part) {
  whole.insert(whole.end(), part.begin(), part.end());
}

/// Appends a data block with the length that it has, which a block that was cut off does not tell.
void append_data_block(std::vector<uint8_t>& whole, std::span<const uint8_t> block) {
  if (block.empty() || block.size() > cta_data_block_t::largest_size || whole.size() + block.size() > checksum_at) {
    return;
  }
  const std::size_t at = whole.size();
  append(whole, block);
  whole[at] = static_cast<uint8_t>((block.front() & 0xE0) | (block.size() - 1));
}

}  // namespace

cta_extension_t::cta_extension_t() { repair(); }

cta_extension_t::cta_extension_t(std::span<const uint8_t> extension_bytes)
    : extension_block_t(extension_bytes.first(std::min(extension_bytes.size(), block_size))) {
  repair();
  parse_data_blocks();
  parse_detailed();
}

cta_extension_t::cta_extension_t(const cta_extension_t& other)
    : extension_block_t(other),
      detailed_block(other.detailed_block ? std::make_unique<det_timings_block_t>(*other.detailed_block) : nullptr) {
  blocks.reserve(other.blocks.size());
  for (const auto& block : other.blocks) {
    blocks.push_back(block->clone());
  }
}

cta_extension_t& cta_extension_t::operator=(const cta_extension_t& other) {
  if (this != &other) {
    *this = cta_extension_t(other);
  }
  return *this;
}

void cta_extension_t::reset() {
  data.clear();
  blocks.clear();
  detailed_block.reset();
}

void cta_extension_t::repair() {
  data.resize(block_size, 0);
  set_byte(tag_at, own_tag);
  set_byte(revision_at, own_revision);
}

void cta_extension_t::parse_data_blocks() {
  constexpr std::size_t usual_count = 8;
  const std::size_t end = std::min<std::size_t>(detailed_offset(), block_size);
  if (end > header_size) {
    blocks.reserve(usual_count);
  }
  for (std::size_t at = header_size; at < end;) {
    const std::size_t told = cta_data_block_t::told_size(data[at]);
    // A block that runs over the end of the list is read as far as the extension reaches.
    add_block(make_cta_data_block(bytes().subspan(at, std::min(told, block_size - at))));
    at += told;
  }
}

void cta_extension_t::parse_detailed() {
  const uint8_t offset = detailed_offset();
  if (offset != 0 && byte(offset) != 0) {
    detailed_block = std::make_unique<det_timings_block_t>(bytes().subspan(offset), offset, capacity_from(offset));
  }
}

bool cta_extension_t::valid() const {
  return extension_block_t::valid() && revision() == own_revision &&
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

void cta_extension_t::add_block(std::unique_ptr<cta_data_block_t> block) {
  if (block != nullptr) {
    blocks.push_back(std::move(block));
  }
}

cta_data_block_t* cta_extension_t::find_block(uint8_t block_tag) const {
  const auto found =
      std::find_if(blocks.begin(), blocks.end(), [=](const auto& block) { return block->tag() == block_tag; });
  return found != blocks.end() ? found->get() : nullptr;
}

cta_extended_data_block_t* cta_extension_t::find_extended_block(uint8_t extended_tag) const {
  for (const auto& block : blocks) {
    auto* extended = dynamic_cast<cta_extended_data_block_t*>(block.get());
    if (extended != nullptr && extended->extended_tag() == extended_tag) {
      return extended;
    }
  }
  return nullptr;
}

det_timings_block_t& cta_extension_t::detailed() {
  if (detailed_block == nullptr) {
    const std::size_t offset = detailed_offset();
    detailed_block = std::make_unique<det_timings_block_t>(
        std::span<const uint8_t>(), static_cast<uint32_t>(offset + block_size), capacity_from(offset));
  }
  return *detailed_block;
}

void cta_extension_t::refresh_offset() {
  std::size_t offset = blocks.empty() && detailed_block == nullptr ? 0 : header_size;
  for (const auto& block : blocks) {
    offset += cta_data_block_t::told_size(block->byte(0));
  }
  set_byte(detailed_offset_at, static_cast<uint8_t>(std::min<std::size_t>(offset, 255)));
}

std::vector<uint8_t> cta_extension_t::assemble() const {
  std::vector<uint8_t> whole{own_tag, own_revision, 0, byte(flags_at)};
  for (const auto& block : blocks) {
    append_data_block(whole, block->bytes());
  }
  const bool empty = whole.size() == header_size && detailed_block == nullptr;
  whole[detailed_offset_at] = empty ? uint8_t{0} : static_cast<uint8_t>(whole.size());
  if (detailed_block != nullptr) {
    const auto timings = detailed_block->bytes();
    append(whole, timings.first(std::min(timings.size(), capacity_from(whole.size()) * entry_size)));
  }
  whole.resize(block_size, 0);
  whole[checksum_at] = checksum_of(whole, checksum_at);
  return whole;
}

}  // namespace edid_lib
