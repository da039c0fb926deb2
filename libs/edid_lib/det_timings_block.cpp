#include "edid_lib/det_timings_block.h"

#include <algorithm>

#include "edid_lib/visitor.h"

namespace edid_lib {
namespace {

constexpr uint8_t padding = 1;

}  // namespace

det_timings_block_t::det_timings_block_t(std::span<const uint8_t> block_bytes, uint32_t block_offset, uint32_t entries)
    : edid_block_t(block_bytes), position(block_offset) {
  set_capacity(entries);
}

void det_timings_block_t::set_capacity(uint32_t entries) {
  room = entries;
  data.resize(room * entry_size, padding);
}

void det_timings_block_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

std::span<const uint8_t> det_timings_block_t::on_get(std::size_t index) const {
  return index < data.size() / entry_size ? bytes().subspan(index * entry_size, entry_size)
                                          : std::span<const uint8_t>();
}

std::size_t det_timings_block_t::count() const {
  std::size_t timings = 0;
  for (std::size_t i = 0; i < data.size() / entry_size; ++i) {
    timings += has_clock(entry(i)) ? 1 : 0;
  }
  return timings;
}

bool det_timings_block_t::add(const vid_resolution_t& mode) {
  const std::size_t at = count() * entry_size;
  if (at + entry_size > data.size()) {
    return false;
  }
  const auto entry_bytes = encode_detailed_entry(mode);
  const detailed_entry_t stored = entry_bytes.value_or(detailed_entry_t{});
  std::copy(stored.begin(), stored.end(), data.begin() + static_cast<std::ptrdiff_t>(at));
  return entry_bytes.has_value();
}

std::vector<vid_resolution_t> det_timings_block_t::modes() const {
  std::vector<vid_resolution_t> list;
  append_modes(list);
  return list;
}

void det_timings_block_t::append_modes(std::vector<vid_resolution_t>& list) const {
  for (std::size_t i = 0; i < data.size() / entry_size; ++i) {
    if (auto mode = decode_detailed_entry(entry(i))) {
      list.push_back(*std::move(mode));
    }
  }
}

detailed_entry_view_t det_timings_block_t::entry(std::size_t index) const {
  return detailed_entry_view_t(data.data() + index * entry_size, entry_size);
}

}  // namespace edid_lib
