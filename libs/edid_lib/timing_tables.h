#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "edid_lib/vid_resolution.h"

namespace edid_lib {

/// A row of a timing table.
struct timing_row_t {
  /// The mode's name, as `vid_resolution_t::key()` gives it. No mode has the key of a row at 65 or 100 Hz, which are no
  /// nominal rates, and no parsed one that of a row with "RB", which is read as a pixel aspect, too.
  std::string_view key;
  uint32_t number;  ///< Bit index, video identification code or HDMI VIC; row number in the DMT table.
  vid_timing_t timing;
};

/// A timing table with the orders it is asked in. Those below are built before `main`, or sooner, at their first use,
/// and never change, so any thread may read them.
class timing_table_t {
 public:
  /// `table_rows` live as long as the table and are numbered one by one from the first. At least one.
  explicit timing_table_t(std::span<const timing_row_t> table_rows);

  /// The row whose key is `mode.key()`, or null. Makes no text.
  const timing_row_t* find(const vid_resolution_t& mode) const;

  /// The row of that number, or null.
  const timing_row_t* find_number(uint32_t number) const;

  /// The mode that the key of the row of that number parses to, with the row's timing; null if there is no such row.
  const vid_resolution_t* named_mode(uint32_t number) const { return of_number(named_modes, number); }

  /// The `rate_alternative` of that mode; the mode itself if it has none.
  const vid_resolution_t* alternative_mode(uint32_t number) const { return of_number(alternative_modes, number); }

  /// All rows in the order of their keys, byte by byte.
  std::span<const timing_row_t* const> by_key() const { return key_order; }

 private:
  /// What a key says, without the text.
  struct mode_name_t {
    int32_t width;
    int32_t height;
    float rate;
    float pixel_aspect_x;
    float pixel_aspect_y;
    bool interlaced;
    bool reduced_blanking;

    bool operator==(const mode_name_t&) const = default;
    std::size_t hash() const;
  };

  struct named_row_t {
    mode_name_t name = {};
    const timing_row_t* row = nullptr;  ///< Null: the slot is free.
  };

  static mode_name_t name_of(const vid_resolution_t& mode, float rate);
  static mode_name_t name_of(const timing_row_t& row);
  std::size_t slot_of(const mode_name_t& name) const;
  const vid_resolution_t* of_number(const std::vector<vid_resolution_t>& modes, uint32_t number) const;

  std::span<const timing_row_t> rows;
  std::vector<vid_resolution_t> named_modes;        ///< In the order of `rows`,
  std::vector<vid_resolution_t> alternative_modes;  ///< as these are.
  std::vector<named_row_t> slots;                   ///< A row by its name, or in the next free slot behind its own.
  std::vector<const timing_row_t*> key_order;
};

/// The 17 modes of an EDID's established timing bits; the number is the bit's index, 0 to 16.
const timing_table_t& established_timings();

/// The VESA display monitor timings.
const timing_table_t& dmt_timings();

/// The CTA-861 video formats 1 to 107; the number is the video identification code.
const timing_table_t& cta_timings();

/// The four video formats of the HDMI vendor block; the number is the HDMI VIC.
const timing_table_t& hdmi_timings();

}  // namespace edid_lib
