#pragma once

#include <cstdint>
#include <iosfwd>
#include <string_view>

#include "edid_lib/vid_resolution.h"

namespace edid_lib {

enum class color_standard_t : uint32_t {
  unspecified,
  bt_601,
  bt_709,
  bt_2020,
  srgb,
  smpte_170,
  adobe_rgb,
  dci_p3_d65,
  dci_p3_theatre,
  xv_color,
};
enum class color_encoding_t : uint32_t { unspecified, rgb, ycc, constant_luminance_ycc };
enum class chroma_sampling_t : uint32_t { unspecified, yuv_444, yuv_422, yuv_420 };
enum class color_range_t : uint32_t { unspecified, full, limited };
enum class color_depth_t : uint32_t { unspecified, bits_24, bits_30, bits_36, bits_48 };

/// The word for a value of one of the five enumerations above, "BT.709"; "Unknown" for a value that has none.
template <typename Enum>
std::string_view color_word(Enum value);

/// The value that a word stands for, in whatever case; that of "Default" for a word that stands for none.
template <typename Enum>
Enum color_value(std::string_view word);

/// How the numbers of a pixel become a colour.
struct color_format_t {
  color_standard_t colorimetry = color_standard_t::unspecified;
  color_encoding_t encoding = color_encoding_t::unspecified;
  chroma_sampling_t chroma = chroma_sampling_t::unspecified;
  color_range_t range = color_range_t::unspecified;
  color_depth_t depth = color_depth_t::unspecified;

  bool operator==(const color_format_t&) const = default;
};

/// The part of a colour format that a display can be asked for alone.
struct colorimetry_t {
  color_standard_t colorimetry = color_standard_t::unspecified;
  color_encoding_t encoding = color_encoding_t::unspecified;

  bool operator==(const colorimetry_t&) const = default;
};

/// Writes "color_format_t{BT.709,RGB,444,Limited,24 bit}".
std::ostream& operator<<(std::ostream& out, const color_format_t& format);

/// Reads what `operator<<` writes; name and words may stand in any case. Another name leaves `format` as it is. Words
/// are taken as they stand between the commas; missing ones count as unknown, further ones are left out.
std::istream& operator>>(std::istream& in, color_format_t& format);

/// Writes "colorimetry_t{BT.709, RGB}".
std::ostream& operator<<(std::ostream& out, const colorimetry_t& colorimetry);

/// What a mode is shown in when nobody says: BT.601 for CTA modes of 4:3, BT.709 for all others.
color_standard_t default_colorimetry(const vid_resolution_t& mode);

/// What a mode's numbers span when nobody says: limited for YCC and for CTA modes but 640x480, full for all others.
color_range_t default_range(const vid_resolution_t& mode, color_encoding_t encoding);

}  // namespace edid_lib
