#pragma once

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

#include "edid_lib/color_format.h"
#include "edid_lib/vid_resolution.h"
#include "edid_lib/vid_timing.h"

namespace edid_lib {

/// A timing under the number that its device knows it by.
struct vgn_mode_t {
  vid_timing_t timing;
  uint32_t number = 0;

  bool operator==(const vgn_mode_t&) const = default;
};

/// A timing and the colours that go with it.
struct vgn_vid_info_t {
  vid_timing_t timing;
  color_format_t color;

  bool operator==(const vgn_vid_info_t&) const = default;
};

/// A list of modes of which one may be the current one.
struct vid_info_t {
  int32_t current_index = -1;  ///< Negative: none is told.
  std::vector<vid_resolution_t> modes;

  /// The mode at the index; the first one for a negative index. Null if there is no such mode. Lives as long as the
  /// list is not changed.
  const vid_resolution_t* current() const;

  /// What a person sees of the mode at `index`, which has to be in the list: "1920x1080p60 (preferred)*", the star
  /// being that of the current one.
  std::string list_text(std::size_t index) const;
};

/// The mode of a list's text, without star and preference. Throws as the parser of modes does.
vid_resolution_t parse_list_text(std::string_view text);

/// The records as "vgn_mode_t{vid_timing_t{ ... },4}", "vgn_vid_info_t{vid_timing_t{ ... },color_format_t{...}}" and
/// "vid_info_t{0,1920x1080p60 (preferred)*,1280x720p60}".
std::ostream& operator<<(std::ostream& out, const vgn_mode_t& mode);
std::ostream& operator<<(std::ostream& out, const vgn_vid_info_t& info);
std::ostream& operator<<(std::ostream& out, const vid_info_t& info);

}  // namespace edid_lib
