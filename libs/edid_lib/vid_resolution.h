#pragma once

#include <compare>
#include <cstdint>
#include <string>
#include <string_view>

#include "edid_lib/vid_timing.h"

namespace edid_lib {

/// The words that stand behind the rate of a mode's text.
inline constexpr std::string_view reduced_blanking_word = "RB";
inline constexpr std::string_view preferred_word = "(preferred)";

/// The family of standards that a mode's timing belongs to.
enum class timing_type_t : uint32_t { undefined, established, dmt, gft, cvt, cta, hdmi };

/// Where in an EDID a mode was found.
enum class timing_location_t : uint32_t {
  undefined,
  established_block,
  standard_block,
  detailed_timing_descriptor,
  cta_video_data_block,
  cta_hdmi_vsdb,
};

/// A video mode: a size, a rate and what else tells it from its like. Modes travel as text:
///
///     1920x1080@60    720x480@59.94 8:9    1920x1080i@50 RB
///
/// that is the size, "i" when interlaced, the rate, and behind a blank "RB" for reduced blanking or the pixel aspect.
///
/// Modes compare by width, then height, then the text of their nominal rate; nothing else takes part. Rates compare
/// as text on purpose: "60" is greater than "120".
struct vid_resolution_t {
  int32_t width = 0;   ///< Active pixels.
  int32_t height = 0;  ///< Active lines, of the whole frame also when interlaced.

  /// Hz: as the text told, or computed from a timing, then frames a second also when interlaced. Names and comparisons
  /// use `nominal_fps()`.
  float fps = 0;

  float pixel_aspect_x = 1;  ///< Width of a pixel
  float pixel_aspect_y = 1;  ///< to its height. 1 and 1 unless a text told otherwise.
  bool reduced_blanking = false;
  bool interlaced = false;
  bool preferred = false;  ///< By the display, or by the text.

  // What a detailed timing tells besides; 0 in modes from elsewhere.
  uint32_t h_image_mm = 0;
  uint32_t v_image_mm = 0;
  uint32_t h_border = 0;  ///< Pixels on either side.
  uint32_t v_border = 0;  ///< Lines above and below.

  timing_type_t type = timing_type_t::undefined;
  timing_location_t location = timing_location_t::undefined;
  std::string comment;  ///< Closes the display form.
  vid_timing_t timing;  ///< May be unknown.

  vid_resolution_t() = default;

  vid_resolution_t(int32_t mode_width, int32_t mode_height, timing_type_t timing_type, timing_location_t found_at,
                   float rate);

  /// Parses a mode. Each word behind the first sets "RB", pixel aspect and "(preferred)" anew, so only the last one
  /// counts, and a word that is no aspect makes the aspect (-1, 1). What does not parse gets its default, but for the
  /// two halves of the size: throws std::invalid_argument or std::out_of_range if one of them is no whole number.
  explicit vid_resolution_t(std::string_view text);

  /// The mode of a timing. `fps` is clock / h_total / v_total, not doubled for interlaced timings; 0 without totals.
  explicit vid_resolution_t(const vid_timing_t& raw_timing);

  /// The standard rate nearest to `fps`, at most 240. Established and DMT modes have whole rates from 24 up, others
  /// also 23.98, 29.97, 59.94, 119.88 and 239.76. -1 if `fps` is not a number.
  float nominal_fps() const;

  /// The text of the nominal rate, without decimals if it is whole, else with two: "60", "59.94". Lives for ever.
  std::string_view rate_text() const;

  /// The name that the timing tables know the mode by: "720x480i@59.94 8:9".
  std::string key() const;

  /// The form for people: "1920x1080p60", "1920x1080i60 RB 16:9 comment".
  std::string to_string() const;

  /// `to_string()` as it stands in a list of modes, with " (preferred)" behind it where that holds.
  std::string list_text() const;

  /// Whether key and display form tell the pixel aspect: they do unless both of its sides are 1.
  bool has_aspect_in_text() const { return pixel_aspect_x != 1 || pixel_aspect_y != 1; }

  /// The reduced picture aspect, "16:9"; "1:0" for a mode without height, "0:0" for one without size.
  std::string aspect_ratio() const;

  /// Width to height of the picture; 0 without height and with a pixel aspect whose second side is 0.
  float picture_aspect() const;

  /// Whether the picture aspect is less than 0.001 off: 1366x768 is 16:9, 1360x768 is not. Never without height.
  bool is_4_3() const;
  bool is_16_9() const;

  bool operator==(const vid_resolution_t& other) const;
  std::weak_ordering operator<=>(const vid_resolution_t& other) const;
};

}  // namespace edid_lib
