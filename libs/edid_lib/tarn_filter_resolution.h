#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "edid_lib/edid.h"
#include "edid_lib/resolution_filters.h"
#include "edid_lib/vid_resolution.h"

namespace edid_lib {

/// Whose modes a chain of filters is for.
enum class filter_direction_t : uint32_t { neither, input, output };

/// Why video is not shown, by the number that the video path gives.
enum class refusal_reason_t : uint32_t {
  no_format,
  interlaced,
  pixel_size,
  below_min_format,
  above_max_format,
  below_min_fps,
  above_max_fps,
  hardware,
  color_encoding,
};

/// Which modes the appliance can use: the configuration of a chain of filters. A mode passes if every filter accepts
/// it. Nominal rates outside 23.5 to 60.5 never pass. Without limits next to nothing does: as these are made, both are
/// modes of no size.
///
/// A value without locks. Each call builds a chain of its own, so any threads may ask one that nobody changes.
struct tarn_filter_resolution_t {
  bool allow_interlaced = false;
  bool allow_non_square = false;
  vid_resolution_t max_resolution;
  vid_resolution_t min_resolution;
  /// Refused on the output side, whatever else than width, height and nominal rate tells a mode from one of these.
  std::vector<vid_resolution_t> unsupported;
  filter_direction_t direction = filter_direction_t::neither;

  /// Builds the chain for this one mode, as `refused_by` does; for many modes there is `filter`.
  bool accepts(const vid_resolution_t& mode) const { return refused_by(mode).empty(); }

  /// The name of the first filter of the chain that refuses `mode`; empty if all accept it. Lives for ever.
  std::string_view refused_by(const vid_resolution_t& mode) const;

  /// Removes the modes that do not pass; the others keep their order.
  void filter(std::vector<vid_resolution_t>& modes) const;

  /// The modes of `edid` that pass, best first. Changes nothing in it.
  std::vector<vid_resolution_t> modes(edid_t& edid) const;

  /// `edid` with just the modes that pass; 640x480@60 if none does.
  edid_t filtered_edid(const edid_t& edid) const;

  /// What `visitor_renderer_t` says of `edid`, and what becomes of each of its modes, best first. For people. Changes
  /// nothing in it.
  std::string report(edid_t& edid) const;

  /// "Above Max Supported Format"; empty for a number without meaning.
  static std::string_view reason_text(refusal_reason_t reason);

 private:
  using chain_t = std::vector<std::unique_ptr<resolution_filter>>;

  chain_t chain() const;
  void add_direction_filters(chain_t& filters) const;
};

/// The chain for what displays at the outputs report.
tarn_filter_resolution_t output_connection_filter();

}  // namespace edid_lib
