#pragma once

#include <algorithm>
#include <cstdint>
#include <random>
#include <span>
#include <utility>
#include <vector>

#include "edid_lib/edid.h"
#include "edid_lib/timing_lookup.h"
#include "edid_lib/visitor_modes.h"
#include "test_support/edid_builder.h"

namespace edid_lib {

using modes_t = std::vector<vid_resolution_t>;
using bytes_t = std::vector<uint8_t>;

/// Numbers, modes and lists that are the same in every run.
class random_t {
 public:
  uint32_t below(uint32_t end) { return static_cast<uint32_t>(engine() % end); }
  uint32_t between(uint32_t first, uint32_t last) { return first + below(last - first + 1); }
  bool coin() { return below(2) == 0; }

  template <typename T, std::size_t count>
  const T& one_of(const T (&list)[count]) {
    return list[below(count)];
  }
  const vid_resolution_t& one_of(const modes_t& list) { return list[below(static_cast<uint32_t>(list.size()))]; }

  std::vector<uint8_t> bytes(std::size_t count) {
    std::vector<uint8_t> made(count);
    std::generate(made.begin(), made.end(), [this] { return static_cast<uint8_t>(engine()); });
    return made;
  }

  /// Numbers that the 18 bytes of a detailed timing hold, and no interlaced format that stands for its field there.
  vid_timing_t timing() {
    vid_timing_t t;
    t.pixel_clock_khz = between(1, 65535) * 10;
    t.h_active = between(64, 4095);
    t.h_sync_start = t.h_active + below(1024);
    t.h_sync_end = t.h_sync_start + between(1, 1023);
    t.h_total = between(t.h_sync_end, t.h_active + 4095);
    t.v_active = between(64, 4095);
    t.v_sync_start = t.v_active + below(64);
    t.v_sync_end = t.v_sync_start + between(1, 63);
    t.v_total = between(t.v_sync_end, t.v_active + 4095);
    t.flags = (coin() ? positive_hsync : negative_hsync) | (coin() ? positive_vsync : negative_vsync);
    t.flags |= coin() && t.v_active != 540 && t.v_active != 240 && t.v_active != 288 ? interlaced_scan : 0U;
    return t;
  }

  vid_resolution_t mode() {
    static constexpr int32_t sides[] = {-1, 0, 480, 640, 720, 1080, 1920, 3840, 4096};
    static constexpr float rates[] = {0, 23.976F, 24, 29.97F, 50, 59.94F, 60, 65, 75, 100, 119.88F, 120, 240, 1000};
    vid_resolution_t made(one_of(sides), one_of(sides), timing_type_t{below(8)}, timing_location_t{below(7)},
                          one_of(rates) + static_cast<float>(below(3)) / 4);
    made.interlaced = coin();
    if (coin()) {
      made.pixel_aspect_x = static_cast<float>(between(1, 64));
      made.pixel_aspect_y = static_cast<float>(between(1, 63));
    }
    return made;
  }

  /// Modes of all tables, as an EDID's blocks tell them, of every type and location.
  modes_t list() {
    static const modes_t known = known_modes();
    modes_t made;
    for (uint32_t count = below(60); count > 0; --count) {
      vid_resolution_t mode = one_of(known);
      mode.type = coin() ? mode.type : timing_type_t{below(8)};
      mode.location = timing_location_t{below(7)};
      mode.preferred = coin();
      made.push_back(mode);
    }
    return made;
  }

 private:
  static modes_t known_modes() {
    modes_t known;
    for (const modes_t& table : {all_established(), all_dmt(), all_cta(), all_hdmi()}) {
      known.insert(known.end(), table.begin(), table.end());
    }
    return known;
  }

  std::mt19937 engine{4711};  // NOLINT(cert-msc51-cpp): the same in every run
};

inline constexpr const char* seed = "seed 4711";

inline bytes_t copy_of(std::span<const uint8_t> bytes) { return {bytes.begin(), bytes.end()}; }

inline modes_t read(edid_t& edid) {
  visitor_modes_t visitor;
  visitor.read(&edid);
  return visitor.take_modes();
}

inline edid_t written(edid_t edid, const modes_t& modes) {
  visitor_modes_t writer(modes);
  writer.write(&edid);
  return edid;
}

inline std::vector<uint8_t> television() {
  return test_support::edid_builder_t()
      .detailed(0, vid_timing_t{148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5})
      .descriptor(72, 0xFC, "TV")
      .standard(0, 0xD1, 0xC0)
      .cta(1, {test_support::data_block(2, {16, 31, 5, 20, 4, 19}), test_support::data_block(1, {9, 7, 7}),
               test_support::data_block(3, {0x03, 0x0C, 0, 0x10, 0, 0x80, 60, 0x20, 0, 0x20, 1})})
      .build();
}

inline std::vector<uint8_t> random_edid(random_t& random) {
  auto bytes = random.bytes(random.one_of({0U, 17U, 127U, 128U, 129U, 200U, 256U, 300U}));
  if (bytes.size() > 128 && random.coin()) {
    bytes[128] = 2;
  }
  return bytes;
}

}  // namespace edid_lib
