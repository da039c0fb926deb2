#pragma once

#include <memory>
#include <vector>

#include "edid_lib/resolution_filters.h"
#include "edid_lib/vid_resolution.h"

namespace edid_lib {

class edid_t;

/// Whose modes a chain of filters is for.
enum class filter_direction_t : uint32_t { neither, input, output };

/// Which modes the appliance can use: the configuration of a chain of filters. A mode passes if every filter accepts
/// it. Nominal rates outside 23.5 to 60.5 never pass.
struct tarn_filter_resolution_t {
  bool allow_interlaced = false;
  bool allow_non_square = false;
  vid_resolution_t max_resolution;
  vid_resolution_t min_resolution;
  std::vector<vid_resolution_t> unsupported;  ///< Refused on the output side.
  filter_direction_t direction = filter_direction_t::neither;

  bool accepts(const vid_resolution_t& mode) const;

  /// Removes the modes that do not pass; the others keep their order.
  void filter(std::vector<vid_resolution_t>& modes) const;

  /// The modes of `edid` that pass, best first.
  std::vector<vid_resolution_t> modes(edid_t& edid) const;

 private:
  using chain_t = std::vector<std::unique_ptr<resolution_filter>>;

  chain_t chain() const;
  void add_direction_filters(chain_t& filters) const;
};

}  // namespace edid_lib
