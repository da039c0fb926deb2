#include "edid_lib/standard_rates.h"

#include <array>
#include <cstddef>
#include <iterator>

namespace edid_lib {
namespace {

/// Not every rate of the timing tables is here: 65 and 100 are not, so those modes go by another name.
constexpr standard_rate_t rates[] = {
    {"23.98", 23.98F, 1}, {"24", 24, 1},           {"25", 25, 2},    {"29.97", 29.97F, 4}, {"30", 30, 4},
    {"43", 43, 5},        {"50", 50, 6},           {"56", 56, 7},    {"59.94", 59.94F, 9}, {"60", 60, 9},
    {"67", 67, 10},       {"70", 70, 11},          {"72", 72, 12},   {"75", 75, 13},       {"85", 85, 14},
    {"88", 88, 15},       {"119.88", 119.88F, 17}, {"120", 120, 17}, {"200", 200, 18},     {"239.76", 239.76F, 20},
    {"240", 240, 20},
};
constexpr std::size_t last = std::size(rates) - 1;
constexpr standard_rate_t no_rate = {"-1", -1, 0};

/// For each whole number of Hz below the last rate, the first rate that is not below it.
constexpr auto first_not_below = [] {
  std::array<uint8_t, 240> places{};
  for (std::size_t hertz = 0, place = 0; hertz < places.size(); ++hertz) {
    while (rates[place].rate < static_cast<float>(hertz)) {
      ++place;
    }
    places[hertz] = static_cast<uint8_t>(place);
  }
  return places;
}();

/// The place of the nearest rate; `fps` is between the first and the last one.
std::size_t nearest(float fps) {
  std::size_t above = first_not_below[static_cast<std::size_t>(fps)];
  while (rates[above].rate < fps) {
    ++above;
  }
  const float step = rates[above].rate - rates[above - 1].rate;
  return step * 0.5F >= rates[above].rate - fps ? above : above - 1;
}

}  // namespace

const standard_rate_t& standard_rate_of(float fps, bool whole_rates) {
  if (fps > rates[0].rate && fps < rates[last].rate) {
    const standard_rate_t& rate = rates[nearest(fps)];
    return whole_rates ? rates[rate.whole] : rate;
  }
  if (fps <= rates[0].rate) {
    return rates[whole_rates ? rates[0].whole : 0];
  }
  return fps >= rates[last].rate ? rates[last] : no_rate;
}

}  // namespace edid_lib
