#pragma once

#include <cstdint>
#include <string_view>

namespace edid_lib {

/// A rate that modes are named by, in Hz.
struct standard_rate_t {
  std::string_view text;  ///< Without decimals if the rate is whole, else with two.
  float rate;
  uint8_t whole;  ///< The place of the nearest whole rate in the list.
};

/// The standard rate that `fps` is named by: the nearest one, of two as near the greater, at most 240; with
/// `whole_rates` the whole rate nearest to that. The rate -1 if `fps` is not a number.
const standard_rate_t& standard_rate_of(float fps, bool whole_rates);

}  // namespace edid_lib
