#include "edid_lib/edid_base.h"

#include <algorithm>

#include "edid_lib/visitor.h"

namespace edid_lib {
namespace {

constexpr std::size_t block_size = 128;
constexpr uint8_t version_at = 18;
constexpr uint8_t revision_at = 19;
constexpr std::size_t established_at = 35;
constexpr std::size_t standard_at = 38;
constexpr std::size_t detailed_at = 54;
constexpr std::size_t second_detailed_at = 72;
constexpr std::size_t descriptors_end = 126;
constexpr std::size_t extension_count_at = 126;
constexpr std::size_t checksum_at = 127;

constexpr std::size_t entry_size = det_timings_block_t::entry_size;
constexpr std::size_t entries = 4;  ///< detailed timings and descriptors together
constexpr uint32_t most_timings = 2;
constexpr std::size_t descriptor_tag_at = 3;
constexpr uint8_t dummy_tag = 0x10;

/// Just 128 bytes.
std::vector<uint8_t> block_of(std::span<const uint8_t> edid_bytes) {
  const auto head = edid_bytes.first(std::min(edid_bytes.size(), block_size));
  std::vector<uint8_t> block(head.begin(), head.end());
  block.resize(block_size, 0);
  return block;
}

/// How many of the entries are timings: a descriptor has zeros where a timing has its clock.
uint32_t timings_in(std::span<const uint8_t> block) {
  return block[second_detailed_at] != 0 || block[second_detailed_at + 1] != 0 ? most_timings : 1;
}

/// Copies `part` to `at`, as much of it as there is room for in front of `end`.
void put(std::vector<uint8_t>& whole, std::size_t at, std::size_t end, std::span<const uint8_t> part) {
  if (at < end) {
    std::copy_n(part.begin(), std::min(part.size(), end - at), whole.begin() + static_cast<std::ptrdiff_t>(at));
  }
}

/// Zeros would read as a descriptor that the manufacturer defines.
void mark_unused_entries(std::vector<uint8_t>& whole) {
  for (std::size_t at = detailed_at; at < descriptors_end; at += entry_size) {
    const auto entry = std::span(whole).subspan(at, entry_size);
    if (std::all_of(entry.begin(), entry.end(), [](uint8_t byte) { return byte == 0; })) {
      entry[descriptor_tag_at] = dummy_tag;
    }
  }
}

}  // namespace

edid_base_t::edid_base_t()
    : established_timings({}), standard_timings({}), detailed_timings({}, detailed_at, most_timings) {}

edid_base_t::edid_base_t(std::span<const uint8_t> edid_bytes)
    : edid_block_t(block_of(edid_bytes)),
      established_timings(bytes().subspan(established_at, standard_at - established_at)),
      standard_timings(bytes().subspan(standard_at, detailed_at - standard_at)),
      detailed_timings(bytes().subspan(detailed_at, timings_in(data) * entry_size), detailed_at, timings_in(data)) {
  repair();
  parse_descriptors();
}

edid_base_t::edid_base_t(const edid_base_t& other)
    : edid_block_t(other),
      established_timings(other.established_timings),
      standard_timings(other.standard_timings),
      detailed_timings(other.detailed_timings) {
  descriptor_list.reserve(other.descriptor_list.size());
  for (const auto& descriptor : other.descriptor_list) {
    descriptor_list.push_back(descriptor->clone());
  }
}

edid_base_t& edid_base_t::operator=(const edid_base_t& other) {
  if (this != &other) {
    *this = edid_base_t(other);
  }
  return *this;
}

void edid_base_t::reset() {
  data.assign(block_size, 0);
  repair();
  established_timings = est_timings_block_t({});
  standard_timings = std_timings_block_t({});
  detailed_timings = det_timings_block_t({}, detailed_at, most_timings);
  detailed_timings.clear();
  descriptor_list.clear();
}

void edid_base_t::repair() {
  set_header();
  if (version() != 1 && version() != 2) {
    set_byte(version_at, 1);
  }
  if (revision() < 2 || revision() > 4) {
    set_byte(revision_at, 3);
    on_revision_change();
  }
  set_digital_input(true);
  set_preferred_native(true);
}

void edid_base_t::parse_descriptors() {
  descriptor_list.reserve(entries - timings_in(data));
  for (std::size_t at = detailed_at + detailed_timings.size(); at < descriptors_end; at += entry_size) {
    add_descriptor(make_base_descriptor(static_cast<uint32_t>(at), bytes().subspan(at, entry_size)));
  }
}

void edid_base_t::add_descriptor(std::unique_ptr<base_descriptor_block_t> descriptor) {
  if (descriptor != nullptr) {
    descriptor_list.push_back(std::move(descriptor));
  }
}

bool edid_base_t::valid() const {
  return preferred_native() && established_timings.valid() &&
         std::all_of(descriptor_list.begin(), descriptor_list.end(), [](const auto& block) { return block->valid(); });
}

void edid_base_t::accept(visitor_t* visitor, bool forward) {
  if (visitor == nullptr) {
    return;
  }
  if (forward) {
    visitor->visit(this, forward);
    established_timings.accept(visitor, forward);
    standard_timings.accept(visitor, forward);
    detailed_timings.accept(visitor, forward);
    std::for_each(descriptor_list.begin(), descriptor_list.end(),
                  [&](const auto& block) { block->accept(visitor, forward); });
    return;
  }
  std::for_each(descriptor_list.rbegin(), descriptor_list.rend(),
                [&](const auto& block) { block->accept(visitor, forward); });
  detailed_timings.accept(visitor, forward);
  standard_timings.accept(visitor, forward);
  established_timings.accept(visitor, forward);
  visitor->visit(this, forward);
}

std::vector<uint8_t> edid_base_t::assemble(uint8_t extensions) const {
  std::vector<uint8_t> whole = data;
  whole.resize(block_size, 0);
  put(whole, established_at, standard_at, established_timings.bytes());
  put(whole, standard_at, detailed_at, standard_timings.bytes());
  put(whole, detailed_timings.offset(), descriptors_end, detailed_timings.bytes());
  for (const auto& descriptor : descriptor_list) {
    put(whole, descriptor->offset(), descriptors_end, descriptor->bytes());
  }
  mark_unused_entries(whole);
  whole[extension_count_at] = extensions;
  whole[checksum_at] = checksum_of(whole, checksum_at);
  return whole;
}

}  // namespace edid_lib
