#include "edid_lib/vid_info.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace edid_lib;

namespace {

constexpr vid_timing_t full_hd = {148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5};

vid_info_t two_modes(int32_t current_index) {
  vid_info_t info{current_index, {vid_resolution_t("1920x1080@60"), vid_resolution_t("1280x720@60")}};
  info.modes[0].preferred = true;
  return info;
}

template <typename T>
std::string written(const T& value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

}  // namespace

TEST(VidInfo, CurrentModeIsTheOneAtTheIndex) {
  const vid_info_t info = two_modes(1);
  EXPECT_EQ(info.current(), &info.modes[1]);
}

TEST(VidInfo, WithANegativeIndexTheFirstModeIsCurrent) {
  const vid_info_t info = two_modes(-5);
  EXPECT_EQ(info.current(), &info.modes[0]);
}

TEST(VidInfo, OutsideTheListThereIsNoCurrentMode) {
  EXPECT_EQ(two_modes(2).current(), nullptr);
  EXPECT_EQ(vid_info_t().current(), nullptr);
  EXPECT_EQ((vid_info_t{0, {}}).current(), nullptr);
}

TEST(VidInfo, AListTellsPreferredAndCurrentModes) {
  EXPECT_EQ(two_modes(0).list_text(0), "1920x1080p60 (preferred)*");
  EXPECT_EQ(two_modes(0).list_text(1), "1280x720p60");
  EXPECT_EQ(two_modes(1).list_text(1), "1280x720p60*");
  EXPECT_EQ(two_modes(-1).list_text(0), "1920x1080p60 (preferred)");
}

TEST(VidInfo, TextOfAListIsReadWithoutItsMarks) {
  for (const char* text : {"1920x1080p60 (preferred)*", "1920x1080p60 (preferred)", "1920x1080p60*", "1920x1080p60"}) {
    const vid_resolution_t mode = parse_list_text(text);
    EXPECT_EQ(mode.key(), "1920x1080@60") << text;
    EXPECT_FALSE(mode.preferred);
    EXPECT_EQ(mode.pixel_aspect_x, 1);
  }
}

TEST(VidInfo, OnlyMarksAtTheEndAreCut) {
  EXPECT_TRUE(parse_list_text("1920x1080p60 (preferred) *").width == 1920);
  EXPECT_TRUE(parse_list_text("720x480p59.94 (preferred) 8:9").pixel_aspect_x == 8);
  EXPECT_THROW(parse_list_text("1920ax1080p60*"), std::invalid_argument);
}

TEST(VidInfo, RecordsAreWrittenWithTheirFields) {
  EXPECT_EQ(written(vgn_mode_t{full_hd, 4}),
            "vgn_mode_t{vid_timing_t{ 148500 1920 2008 2052 2200 1080 1084 1089 1125 5 },4}");
  EXPECT_EQ(written(vgn_vid_info_t{full_hd, {}}),
            "vgn_vid_info_t{vid_timing_t{ 148500 1920 2008 2052 2200 1080 1084 1089 1125 5 },"
            "color_format_t{Default,Default,Default,Default,Default}}");
  EXPECT_EQ(written(two_modes(0)), "vid_info_t{0,1920x1080p60 (preferred)*,1280x720p60}");
  EXPECT_EQ(written(vid_info_t()), "vid_info_t{-1}");
}
