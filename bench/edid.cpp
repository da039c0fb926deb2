// What a display's EDID costs until the daemon has its list of modes, and what the texts and tables of modes cost.

#include <benchmark/benchmark.h>

#include <array>
#include <string>
#include <vector>

#include "bench/support/percentiles.h"
#include "bench/support/report.h"
#include "edid_lib/tarn_filter_resolution.h"
#include "edid_lib/timing_lookup.h"
#include "test_support/edid_builder.h"
#ifdef VGN_BENCH_DISPLAY_INFO
#include "bench/support/display_info.h"
#endif

namespace {

using edid_lib::cta_timing;
using edid_lib::vid_resolution_t;
using test_support::data_block;
using test_support::edid_builder_t;

using bytes_t = std::vector<uint8_t>;

edid_lib::vid_timing_t timing_of(const char* key) { return resolve_timing(vid_resolution_t(key)).timing; }

edid_builder_t with_descriptors() {
  return edid_builder_t().descriptor(90, 0xFC, "display\n").descriptor(108, 0xFF, "0123456789\n");
}

/// A desk monitor: one detailed timing, all established timings, eight standard timings of which two are no DMT modes.
bytes_t monitor() {
  constexpr std::array<std::array<uint8_t, 2>, 8> codes{
      {{0x81, 0x80}, {0xA9, 0xC0}, {0x71, 0x4F}, {0x81, 0x00}, {0xB3, 0x00}, {0xD1, 0xC0}, {0x95, 0x40}, {0x61, 0xC5}}};
  auto builder = with_descriptors();
  builder.byte(35, 0xFF).byte(36, 0xEF).byte(37, 0x80).detailed(0, timing_of("1920x1200@60 RB"));
  for (std::size_t i = 0; i < codes.size(); ++i) {
    builder.standard(i, codes[i][0], codes[i][1]);
  }
  return builder.build();
}

std::vector<uint8_t> hdmi_block() {
  return data_block(3, {0x03, 0x0C, 0x00, 0x10, 0x00, 0xB8, 0x3C, 0x20, 0x00, 0x80, 0x01, 0x02, 0x03, 0x04});
}

/// A television: 30 video codes, four HDMI VICs, and detailed timings in both blocks.
bytes_t tv() {
  const auto video =
      data_block(2, {0x61, 0x60, 0x5F, 0x5E, 0x5D, 0x90, 0x1F, 0x22, 0x21, 0x20, 0x05, 0x14, 0x04, 0x13, 0x03,
                     0x02, 0x12, 0x11, 0x07, 0x06, 0x16, 0x15, 0x01, 0x66, 0x65, 0x64, 0x63, 0x62, 0x3F, 0x40});
  return with_descriptors()
      .byte(35, 0x21)
      .byte(36, 0x08)
      .standard(0, 0xD1, 0xC0)
      .standard(1, 0x81, 0xC0)
      .detailed(0, timing_of("3840x2160@60"))
      .detailed(1, timing_of("1920x1080@60"))
      .cta(1,
           {video, data_block(1, {0x09, 0x07, 0x07, 0x15, 0x07, 0x50}), data_block(4, {0x01, 0, 0}), hdmi_block(),
            data_block(3, {0xD8, 0x5D, 0xC4, 0x01, 0x78, 0x80, 0x03}), data_block(7, {0x05, 0xC3, 0x01})},
           {timing_of("1280x720@60"), timing_of("1920x1080i@60")})
      .build();
}

/// What a bad cable makes of a television: wrong header, version and checksums, cut in the extension, a data block that
/// runs past the end.
bytes_t broken() {
  bytes_t bytes = tv();
  for (std::size_t i = 0; i < bytes.size(); i += 7) {
    bytes[i] = static_cast<uint8_t>(bytes[i] ^ i);
  }
  bytes[128] = 2;
  bytes[130] = 0x7F;
  bytes.resize(200);
  return bytes;
}

void list(benchmark::State& state, const bytes_t& bytes) {
  bench::count_each(state, [&bytes] {
    edid_lib::edid_t edid(bytes);
    benchmark::DoNotOptimize(edid_lib::output_connection_filter().modes(edid).size());
  });
}

#ifdef VGN_BENCH_DISPLAY_INFO
void parse_and_walk(benchmark::State& state, const bytes_t& bytes) {
  bench::count_each(state, [&bytes] { benchmark::DoNotOptimize(bench::walk_with_display_info(bytes)); });
}
#endif

void parse_text(benchmark::State& state, const std::string& text) {
  bench::count_allocations(state, [&text] { benchmark::DoNotOptimize(vid_resolution_t(text).width); });
}

void make_key(benchmark::State& state, const std::string& text) {
  const vid_resolution_t mode(text);
  bench::count_allocations(state, [&mode] { benchmark::DoNotOptimize(mode.key().size()); });
}

void parse_and_make_key(benchmark::State& state, const std::string& text) {
  bench::count_allocations(state, [&text] { benchmark::DoNotOptimize(vid_resolution_t(text).key().size()); });
}

/// `look_up` is asked for the same mode again and again.
template <typename LookUp>
void look_up_mode(benchmark::State& state, const std::string& text, LookUp look_up) {
  const vid_resolution_t mode(text);
  bench::count_allocations(state, [&] { benchmark::DoNotOptimize(look_up(mode)); });
}

void register_lists() {
  for (const auto& [name, bytes] :
       {std::pair<std::string, bytes_t>{"monitor", monitor()}, std::pair<std::string, bytes_t>{"tv", tv()},
        std::pair<std::string, bytes_t>{"broken", broken()}}) {
    benchmark::RegisterBenchmark(("edid/list/" + name).c_str(), list, bytes);
#ifdef VGN_BENCH_DISPLAY_INFO
    benchmark::RegisterBenchmark(("libdisplay-info/walk/" + name).c_str(), parse_and_walk, bytes);
#endif
  }
}

void register_texts() {
  for (const std::string text : {"1920x1080@60", "720x480i@59.94 8:9"}) {
    benchmark::RegisterBenchmark(("mode/parse/" + text).c_str(), parse_text, text);
    benchmark::RegisterBenchmark(("mode/key/" + text).c_str(), make_key, text);
    benchmark::RegisterBenchmark(("mode/parse_and_key/" + text).c_str(), parse_and_make_key, text);
  }
}

void register_look_ups() {
  const auto cta = [](const vid_resolution_t& mode) { return edid_lib::cta_vic(mode); };
  const auto dmt = [](const vid_resolution_t& mode) { return edid_lib::is_dmt(mode); };
  const auto all = [](const vid_resolution_t& mode) { return edid_lib::classify(mode); };
  benchmark::RegisterBenchmark("table/cta/hit", look_up_mode<decltype(cta)>, "1920x1080@60", cta);
  benchmark::RegisterBenchmark("table/cta/slower_twin", look_up_mode<decltype(cta)>, "640x480@60", cta);
  benchmark::RegisterBenchmark("table/dmt/reduced_blanking", look_up_mode<decltype(dmt)>, "2560x1600@120", dmt);
  benchmark::RegisterBenchmark("table/all/miss", look_up_mode<decltype(all)>, "1111x999@60", all);
}

}  // namespace

int main(int argc, char** argv) {
  register_lists();
  register_texts();
  register_look_ups();
  return bench::run(
      argc, argv, {31, 0.02},
      {{"edid/list/monitor", "libdisplay-info/walk/monitor"}, {"edid/list/tv", "libdisplay-info/walk/tv"}});
}
