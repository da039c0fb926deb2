#include "fuzz/edid/support.h"

#include <numeric>
#include <tuple>

#include "edid_lib/timing_lookup.h"
#include "edid_lib/visitor_modes.h"

namespace fuzz::edid {
namespace {

const vid_resolution_t& one_of(const modes_t& modes, uint8_t number) { return modes[number % modes.size()]; }

vid_resolution_t take_named_mode(input_t& input) {
  static const modes_t families[] = {edid_lib::all_cta(), edid_lib::all_dmt(), edid_lib::all_established(),
                                     edid_lib::all_hdmi()};
  const uint8_t family = input.take_byte();
  return one_of(families[family % std::size(families)], input.take_byte());
}

edid_lib::vid_timing_t take_timing(input_t& input) {
  edid_lib::vid_timing_t timing;
  timing.pixel_clock_khz = take_number(input);
  timing.h_active = input.take_byte() * 16U;
  timing.h_sync_start = timing.h_active + input.take_byte();
  timing.h_sync_end = timing.h_sync_start + input.take_byte();
  timing.h_total = timing.h_sync_end + input.take_byte();
  timing.v_active = input.take_byte() * 16U;
  timing.v_sync_start = timing.v_active + input.take_byte();
  timing.v_sync_end = timing.v_sync_start + input.take_byte();
  timing.v_total = timing.v_sync_end + input.take_byte();
  timing.flags = input.take_byte();
  return timing;
}

vid_resolution_t take_strange_mode(input_t& input) {
  vid_resolution_t mode(static_cast<int32_t>(take_number(input)), static_cast<int32_t>(take_number(input)),
                        edid_lib::timing_type_t(input.take_byte() % 8), edid_lib::timing_location_t{},
                        static_cast<float>(take_number(input)) / 1000.0F);
  if (take_flag(input)) {
    mode = vid_resolution_t(take_timing(input));
  }
  mode.location = edid_lib::timing_location_t(input.take_byte() % 7);
  mode.pixel_aspect_x = static_cast<float>(input.take_byte());
  mode.pixel_aspect_y = static_cast<float>(input.take_byte());
  mode.reduced_blanking = take_flag(input);
  mode.interlaced = take_flag(input);
  mode.h_image_mm = take_number(input);
  mode.v_image_mm = take_number(input);
  mode.h_border = input.take_byte();
  return mode;
}

}  // namespace

bool same_bytes(std::span<const uint8_t> a, std::span<const uint8_t> b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

std::vector<uint8_t> copy_of(std::span<const uint8_t> bytes) { return {bytes.begin(), bytes.end()}; }

bool sums_up(std::span<const uint8_t> block) { return std::accumulate(block.begin(), block.end(), 0) % 256 == 0; }

bool is_same(const vid_resolution_t& a, const vid_resolution_t& b) {
  const auto told = [](const vid_resolution_t& mode) {
    return std::tie(mode.width, mode.height, mode.fps, mode.pixel_aspect_x, mode.pixel_aspect_y, mode.reduced_blanking,
                    mode.interlaced, mode.preferred, mode.timing, mode.type, mode.location);
  };
  return told(a) == told(b);
}

bool are_same(const modes_t& a, const modes_t& b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), is_same);
}

modes_t modes_of(edid_lib::edid_t& edid) {
  edid_lib::visitor_modes_t visitor;
  visitor.read(&edid);
  return visitor.take_modes();
}

uint32_t take_number(input_t& input) {
  uint32_t number = 0;
  for (uint32_t shift = 0; shift < 32; shift += 8) {
    number |= uint32_t{input.take_byte()} << shift;
  }
  return number;
}

std::vector<uint8_t> take_bytes(input_t& input, std::size_t count) {
  const std::string_view taken = input.take(count);
  return {taken.begin(), taken.end()};
}

vid_resolution_t take_mode(input_t& input) {
  return input.take_byte() % 4 == 3 ? take_strange_mode(input) : take_named_mode(input);
}

}  // namespace fuzz::edid
