#include "edid_lib/vid_timing.h"

#include <istream>
#include <ostream>
#include <sstream>
#include <string>

#include "edid_lib/ascii_case.h"

namespace edid_lib {
namespace {

constexpr uint32_t vid_timing_t::*fields[] = {
    &vid_timing_t::pixel_clock_khz, &vid_timing_t::h_active, &vid_timing_t::h_sync_start, &vid_timing_t::h_sync_end,
    &vid_timing_t::h_total,         &vid_timing_t::v_active, &vid_timing_t::v_sync_start, &vid_timing_t::v_sync_end,
    &vid_timing_t::v_total,         &vid_timing_t::flags,
};

}  // namespace

std::ostream& operator<<(std::ostream& out, const vid_timing_t& timing) {
  out << "vid_timing_t{ ";
  for (const auto field : fields) {
    out << timing.*field << ' ';
  }
  return out << '}';
}

std::istream& operator>>(std::istream& in, vid_timing_t& timing) {
  std::string name;
  std::getline(in, name, '{');
  if (!same_ignoring_case(name, "vid_timing_t")) {
    return in;
  }
  std::string numbers;
  std::getline(in, numbers, '}');
  std::istringstream text(numbers);
  for (const auto field : fields) {
    text >> timing.*field;
  }
  return in;
}

}  // namespace edid_lib
