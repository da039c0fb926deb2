#include "edid_lib/timing_tables.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <tuple>

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

bool has_aspect_in_key(const vid_resolution_t& mode) { return mode.pixel_aspect_x != 1 || mode.pixel_aspect_y != 1; }

}  // namespace

bool timing_table_t::mode_name_t::operator<(const mode_name_t& other) const {
  const auto all = [](const mode_name_t& name) {
    return std::tie(name.width, name.height, name.rate, name.pixel_aspect_x, name.pixel_aspect_y, name.interlaced,
                    name.reduced_blanking);
  };
  return all(*this) < all(other);
}

timing_table_t::mode_name_t timing_table_t::name_of(const vid_resolution_t& mode, float rate) {
  mode_name_t name{mode.width, mode.height, rate, 1, 1, mode.interlaced, mode.reduced_blanking};
  if (has_aspect_in_key(mode)) {
    name.pixel_aspect_x = as_printed(mode.pixel_aspect_x);
    name.pixel_aspect_y = as_printed(mode.pixel_aspect_y);
  }
  return name;
}

timing_table_t::named_row_t timing_table_t::named_row(const timing_row_t& row) {
  vid_resolution_t mode(row.key);
  if (mode.reduced_blanking) {
    mode.pixel_aspect_x = 1;  // the parser takes "RB" for an aspect too; no key of a table has both
  }
  return {name_of(mode, mode.fps), &row};
}

timing_table_t::timing_table_t(std::span<const timing_row_t> table_rows) : rows(table_rows) {
  for (const timing_row_t& row : rows) {
    named_modes.emplace_back(row.key).timing = row.timing;
    name_order.push_back(named_row(row));
    key_order.push_back(&row);
  }
  std::sort(name_order.begin(), name_order.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
  std::sort(key_order.begin(), key_order.end(), [](const auto* a, const auto* b) { return a->key < b->key; });
}

const timing_row_t* timing_table_t::find(const vid_resolution_t& mode) const {
  const mode_name_t name = name_of(mode, mode.nominal_fps());
  if (has_aspect_in_key(mode) && name.pixel_aspect_x == 1 && name.pixel_aspect_y == 1) {
    return nullptr;  // just off 1:1: its key ends in " 1:1", and no row's does
  }
  const auto found =
      std::lower_bound(name_order.begin(), name_order.end(), name,
                       [](const named_row_t& row, const mode_name_t& wanted) { return row.name < wanted; });
  return found != name_order.end() && found->name == name ? found->row : nullptr;
}

const timing_row_t* timing_table_t::find_number(uint32_t number) const {
  const uint32_t index = number - rows.front().number;
  return index < rows.size() ? &rows[index] : nullptr;
}

const vid_resolution_t* timing_table_t::named_mode(uint32_t number) const {
  const timing_row_t* row = find_number(number);
  return row != nullptr ? &named_modes[static_cast<std::size_t>(row - rows.data())] : nullptr;
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

}  // namespace edid_lib
