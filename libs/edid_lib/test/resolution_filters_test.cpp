#include "edid_lib/resolution_filters.h"

#include <gtest/gtest.h>

using namespace edid_lib;

namespace {

vid_resolution_t mode(std::string_view key) { return vid_resolution_t(key); }

vid_resolution_t mode_at(float fps) { return {1920, 1080, timing_type_t::cta, timing_location_t::undefined, fps}; }

bool output_takes(const vid_timing_t& timing) {
  return vgnstreamer_hw_output_filter().accept(vid_resolution_t(timing));
}

/// A timing with this clock and even positions, whose line rate is 100 kHz.
vid_timing_t clocked(uint32_t pixel_clock_khz) {
  const uint32_t total = pixel_clock_khz / 100 & ~1U;
  return {pixel_clock_khz, total - 80, total - 60, total - 40, total, 1080, 1084, 1089, 1125, 5};
}

/// A timing of 148.5 MHz with this number of pixels a line.
vid_timing_t with_line_of(uint32_t total) { return {148500, 960, 970, 980, total, 1080, 1084, 1089, 1125, 5}; }

}  // namespace

TEST(ResolutionFilters, InterlacedModesAreRefused) {
  EXPECT_TRUE(interlaced_filter().accept(mode("1920x1080@60")));
  EXPECT_FALSE(interlaced_filter().accept(mode("1920x1080i@60")));
}

TEST(ResolutionFilters, ModesWithoutSquarePixelsAreRefused) {
  EXPECT_TRUE(non_square_pixels_filter().accept(mode("1920x1080@60")));
  EXPECT_TRUE(non_square_pixels_filter().accept(mode("1920x1080@60 2:2")));
  EXPECT_FALSE(non_square_pixels_filter().accept(mode("720x480@59.94 8:9")));
}

TEST(ResolutionFilters, MaxComparesWidthThenHeightThenTheTextOfTheRate) {
  const max_resolution_filter filter(mode("3840x2160@60"));
  EXPECT_TRUE(filter.accept(mode("3840x2160@60")));
  EXPECT_TRUE(filter.accept(mode("3840x2160@30")));
  EXPECT_TRUE(filter.accept(mode("3840x2160@120")));
  EXPECT_FALSE(filter.accept(mode("3840x2160@75")));
  EXPECT_FALSE(filter.accept(mode("3840x2161@24")));
  EXPECT_FALSE(filter.accept(mode("4096x2160@24")));
  EXPECT_TRUE(filter.accept(mode("2560x5000@60")));
}

TEST(ResolutionFilters, MinComparesTheSameWay) {
  const min_resolution_filter filter(mode("640x480@59.94"));
  EXPECT_TRUE(filter.accept(mode("640x480@59.94")));
  EXPECT_TRUE(filter.accept(mode("640x480@60")));
  EXPECT_FALSE(filter.accept(mode("640x480@120")));
  EXPECT_FALSE(filter.accept(mode("640x400@85")));
  EXPECT_FALSE(filter.accept(mode("639x480@60")));
}

TEST(ResolutionFilters, MaxFpsGoesByTheNominalRate) {
  const max_fps_filter filter(60.5F);
  EXPECT_TRUE(filter.accept(mode_at(60.4F)));
  EXPECT_TRUE(filter.accept(mode_at(62)));  // 60 by name
  EXPECT_FALSE(filter.accept(mode_at(75)));
  EXPECT_FALSE(filter.accept(mode_at(120)));
  EXPECT_TRUE(max_fps_filter(59.96F).accept(mode_at(60)));
  EXPECT_FALSE(max_fps_filter(59.9F).accept(mode_at(60)));
}

TEST(ResolutionFilters, MinFpsGoesByTheNominalRate) {
  EXPECT_TRUE(min_fps_filter(23.5F).accept(mode_at(23.98F)));
  EXPECT_TRUE(min_fps_filter(23.5F).accept(mode_at(23)));  // 23.98 by name
  EXPECT_TRUE(min_fps_filter(24.01F).accept(mode_at(24)));
  EXPECT_FALSE(min_fps_filter(24.5F).accept(mode_at(24)));
}

TEST(ResolutionFilters, UnsupportedModesAreRefusedAtTheirRateAlone) {
  const vgnstreamer_unsupported_resolutions_filter filter({mode("1280x720@50"), mode("1920x1080@25")});
  EXPECT_FALSE(filter.accept(mode("1920x1080@25")));
  EXPECT_FALSE(filter.accept(mode("1280x720i@50")));
  EXPECT_TRUE(filter.accept(mode("1280x720@60")));
}

TEST(ResolutionFilters, InputRefuses720x480AtAnyRate) {
  const vgnstreamer_hw_input_filter filter;
  EXPECT_FALSE(filter.accept(mode("720x480@59.94 8:9")));
  EXPECT_FALSE(filter.accept(mode("720x480@240")));
  EXPECT_TRUE(filter.accept(mode("720x576@50")));
  EXPECT_TRUE(filter.accept(mode("1440x480@60")));
}

TEST(ResolutionFilters, Output720x480IsTaken) {
  EXPECT_TRUE(output_takes({27000, 720, 736, 798, 858, 480, 489, 495, 525, 10}));
}

TEST(ResolutionFilters, OutputTakesClocksFrom25To600Megahertz) {
  EXPECT_TRUE(output_takes(clocked(25000)));
  EXPECT_FALSE(output_takes(clocked(24999)));
  EXPECT_TRUE(output_takes(clocked(600000)));
  EXPECT_FALSE(output_takes(clocked(600001)));
  EXPECT_TRUE(output_takes({594000, 4096, 4184, 4272, 4400, 2160, 2168, 2178, 2250, 5}));
}

TEST(ResolutionFilters, OutputTakesAClockByWhatIsLeftOfItInHertz) {
  EXPECT_TRUE(output_takes({4294967 + 100000, 1920, 1930, 1940, 2000, 1080, 1084, 1089, 1125, 5}));  // 99'999'704
  EXPECT_FALSE(output_takes({4294967 + 1, 1920, 1930, 1940, 2000, 1080, 1084, 1089, 1125, 5}));      // 704
}

TEST(ResolutionFilters, OutputRefusesOddPositions) {
  EXPECT_FALSE(output_takes({85500, 1366, 1436, 1579, 1792, 768, 771, 774, 798, 5}));
  EXPECT_FALSE(output_takes({85500, 1367, 1436, 1580, 1792, 768, 771, 774, 798, 5}));
  EXPECT_FALSE(output_takes({85500, 1366, 1437, 1580, 1792, 768, 771, 774, 798, 5}));
  EXPECT_FALSE(output_takes({85500, 1366, 1436, 1580, 1793, 768, 771, 774, 798, 5}));
  EXPECT_TRUE(output_takes({85500, 1366, 1436, 1580, 1792, 768, 771, 774, 798, 5}));
}

TEST(ResolutionFilters, OutputTakesLineRatesFrom15To140Kilohertz) {
  EXPECT_TRUE(output_takes(with_line_of(9900)));
  EXPECT_FALSE(output_takes(with_line_of(9902)));
  EXPECT_TRUE(output_takes(with_line_of(1062)));
  EXPECT_FALSE(output_takes(with_line_of(1060)));
  EXPECT_TRUE(output_takes({140000, 960, 970, 980, 1000, 1080, 1084, 1089, 1125, 5}));
  EXPECT_FALSE(output_takes({140001, 960, 970, 980, 1000, 1080, 1084, 1089, 1125, 5}));
}

TEST(ResolutionFilters, OutputRefusesAModeWithoutATiming) {
  EXPECT_FALSE(vgnstreamer_hw_output_filter().accept(mode("1920x1080@60")));
  EXPECT_FALSE(output_takes({148500, 1920, 2008, 2052, 0, 1080, 1084, 1089, 1125, 5}));
}

TEST(ResolutionFilters, HaveTheNamesThatRefusalsAreToldBy) {
  EXPECT_EQ(interlaced_filter().name(), "Interlaced Filter");
  EXPECT_EQ(non_square_pixels_filter().name(), "Non Square Pixel Filter");
  EXPECT_EQ(max_resolution_filter({}).name(), "Max Resolution Filter");
  EXPECT_EQ(min_resolution_filter({}).name(), "Min Resolution Filter");
  EXPECT_EQ(max_fps_filter(1).name(), "Max FPS Filter");
  EXPECT_EQ(min_fps_filter(1).name(), "Min FPS Filter");
  EXPECT_EQ(vgnstreamer_unsupported_resolutions_filter({}).name(),
            "Tarn Video Endpoint Unsupported Resolutions Filter");
  EXPECT_EQ(vgnstreamer_hw_output_filter().name(), "Tarn Video Endpoint HW Output Filter");
  EXPECT_EQ(vgnstreamer_hw_input_filter().name(), "Tarn Video Endpoint HW Input Filter");
}
