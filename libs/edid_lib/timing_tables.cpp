#include "edid_lib/timing_tables.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <iterator>

#include "edid_lib/rate_alternative.h"
#include "edid_lib/tables/timing_rows.h"

namespace edid_lib {
namespace {

/// The number that a stream's six digits of `value` stand for, since keys are texts.
float as_printed(float value) {
  if (value == std::trunc(value) && std::fabs(value) < 1e6F) {
    return value;
  }
  char text[32];
  const auto printed = std::to_chars(std::begin(text), std::end(text), value, std::chars_format::general, 6);
  float read_back = 0;
  std::from_chars(text, printed.ptr, read_back);
  return read_back;
}

}  // namespace

/// The aspect is left out: it tells only pairs apart.
std::size_t timing_table_t::mode_name_t::hash() const {
  constexpr uint64_t golden = 0x9E3779B97F4A7C15;
  const uint64_t size = uint64_t{static_cast<uint32_t>(width)} << 32 | static_cast<uint32_t>(height);
  const uint64_t rest =
      uint64_t{std::bit_cast<uint32_t>(rate)} << 2 | (interlaced ? 2U : 0U) | (reduced_blanking ? 1U : 0U);
  return static_cast<std::size_t>((size * golden ^ rest) * golden >> 32);
}

timing_table_t::mode_name_t timing_table_t::name_of(const vid_resolution_t& mode, float rate) {
  mode_name_t name{mode.width, mode.height, rate, 1, 1, mode.interlaced, mode.reduced_blanking};
  if (mode.has_aspect_in_text()) {
    name.pixel_aspect_x = as_printed(mode.pixel_aspect_x);
    name.pixel_aspect_y = as_printed(mode.pixel_aspect_y);
  }
  return name;
}

timing_table_t::mode_name_t timing_table_t::name_of(const timing_row_t& row) {
  vid_resolution_t mode(row.key);
  if (mode.reduced_blanking) {
    mode.pixel_aspect_x = 1;  // the parser takes "RB" for an aspect too; no key of a table has both
  }
  return name_of(mode, mode.fps);
}

timing_table_t::timing_table_t(std::span<const timing_row_t> table_rows)
    : rows(table_rows), slots(std::bit_ceil(4 * table_rows.size())) {
  for (const timing_row_t& row : rows) {
    named_modes.emplace_back(row.key).timing = row.timing;
    alternative_modes.push_back(rate_alternative(named_modes.back()));
    const mode_name_t name = name_of(row);
    slots[slot_of(name)] = {name, &row};
    key_order.push_back(&row);
  }
  std::sort(key_order.begin(), key_order.end(), [](const auto* a, const auto* b) { return a->key < b->key; });
}

/// The slot of the name, or the free one where it would be. There are always free ones.
std::size_t timing_table_t::slot_of(const mode_name_t& name) const {
  const std::size_t mask = slots.size() - 1;
  std::size_t at = name.hash() & mask;
  while (slots[at].row != nullptr && !(slots[at].name == name)) {
    at = (at + 1) & mask;
  }
  return at;
}

const timing_row_t* timing_table_t::find(const vid_resolution_t& mode) const {
  const mode_name_t name = name_of(mode, mode.nominal_fps());
  if (mode.has_aspect_in_text() && name.pixel_aspect_x == 1 && name.pixel_aspect_y == 1) {
    return nullptr;  // just off 1:1: its key ends in " 1:1", and no row's does
  }
  return slots[slot_of(name)].row;
}

const timing_row_t* timing_table_t::find_number(uint32_t number) const {
  const uint32_t index = number - rows.front().number;
  return index < rows.size() ? &rows[index] : nullptr;
}

const vid_resolution_t* timing_table_t::of_number(const std::vector<vid_resolution_t>& modes, uint32_t number) const {
  const uint32_t index = number - rows.front().number;
  return index < modes.size() ? &modes[index] : nullptr;
}

const timing_table_t& established_timings() {
  static const timing_table_t table(tables::established_rows());
  return table;
}

const timing_table_t& dmt_timings() {
  static const timing_table_t table(tables::dmt_rows());
  return table;
}

const timing_table_t& cta_timings() {
  static const timing_table_t table(tables::cta_rows());
  return table;
}

const timing_table_t& hdmi_timings() {
  static const timing_table_t table(tables::hdmi_rows());
  return table;
}

namespace {

/// No look-up shall be the one that has to build its table.
[[maybe_unused]] const bool built_at_start = [] {
  established_timings();
  dmt_timings();
  cta_timings();
  hdmi_timings();
  return true;
}();

}  // namespace

}  // namespace edid_lib
