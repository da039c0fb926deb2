#include "edid_lib/std_timings_block.h"

#include <gtest/gtest.h>

using edid_lib::std_timings_block_t;
using edid_lib::timing_location_t;
using edid_lib::timing_type_t;
using edid_lib::vid_resolution_t;

namespace {

constexpr uint8_t shape_16_10 = 0x00;
constexpr uint8_t shape_4_3 = 0x40;
constexpr uint8_t shape_5_4 = 0x80;
constexpr uint8_t shape_16_9 = 0xC0;

std_timings_block_t block(std::initializer_list<uint8_t> codes) {
  return std_timings_block_t(std::vector<uint8_t>(codes));
}

uint8_t width_byte(int32_t width) { return static_cast<uint8_t>(width / 8 - 31); }

std::vector<vid_resolution_t> modes_of(uint8_t first, uint8_t second, uint32_t revision = 3,
                                       bool reduced_first = false) {
  return block({first, second}).modes(revision, reduced_first);
}

}  // namespace

TEST(StdTimingsBlock, IsAlwaysSixteenBytesPaddedWithTheUnusedCode) {
  EXPECT_EQ(block({}).size(), 16U);
  EXPECT_EQ(block({}).byte(15), 1);
  EXPECT_EQ(std_timings_block_t(std::vector<uint8_t>(20, 7)).size(), 16U);
}

TEST(StdTimingsBlock, CodesOfTwoEqualBytes0120AreUnused) {
  EXPECT_EQ(block({0x01, 0x01}).count(), 0U);
  EXPECT_EQ(block({0x20, 0x20}).count(), 0U);
  EXPECT_EQ(block({0x00, 0x00}).count(), 0U);
  EXPECT_EQ(block({0x20, 0x01}).count(), 1U);
  EXPECT_EQ(block({0x81, 0x81}).count(), 1U);
}

TEST(StdTimingsBlock, ShapesGiveTheHeight) {
  EXPECT_EQ(modes_of(width_byte(1280), shape_16_10).at(0).key(), "1280x800@60");
  EXPECT_EQ(modes_of(width_byte(1024), shape_4_3).at(0).key(), "1024x768@60");
  EXPECT_EQ(modes_of(width_byte(1280), shape_5_4).at(0).key(), "1280x1024@60");
  EXPECT_EQ(modes_of(width_byte(1280), shape_16_9).at(0).key(), "1280x720@60");
}

TEST(StdTimingsBlock, BeforeRevision3ThePictureWithoutAShapeIsSquare) {
  EXPECT_TRUE(modes_of(width_byte(1280), shape_16_10, 2).empty());
  EXPECT_FALSE(modes_of(width_byte(1280), shape_16_10, 3).empty());
}

TEST(StdTimingsBlock, RateIsTheCodesPlus60) {
  EXPECT_EQ(modes_of(width_byte(1024), shape_4_3 | 15).at(0).key(), "1024x768@75");
  EXPECT_EQ(modes_of(width_byte(1024), shape_4_3 | 25).at(0).key(), "1024x768@85");
}

TEST(StdTimingsBlock, ACodeThatMeansNoDmtModeIsDropped) {
  EXPECT_TRUE(modes_of(width_byte(1928), shape_16_9).empty());
  EXPECT_EQ(block({width_byte(1928), shape_16_9}).count(), 1U);
}

TEST(StdTimingsBlock, CodesNextTo1366x768MeanIt) {
  EXPECT_EQ(modes_of(width_byte(1360), shape_16_9).at(0).key(), "1366x768@60");
  EXPECT_EQ(modes_of(width_byte(1368), shape_16_9).at(0).key(), "1366x768@60");
  EXPECT_TRUE(modes_of(width_byte(1360), shape_16_9 | 15).empty());
}

TEST(StdTimingsBlock, CodesNextTo1366x768MeanItAtEveryRateWhoseNominalOneIs60) {
  for (const int32_t width : {1360, 1368}) {
    for (const uint8_t rate : {uint8_t{0}, uint8_t{1}, uint8_t{2}, uint8_t{3}}) {
      const auto modes = modes_of(width_byte(width), shape_16_9 | rate);
      ASSERT_EQ(modes.size(), 1U) << width << " at 60 + " << +rate;
      EXPECT_EQ(modes[0].key(), "1366x768@60");
    }
    EXPECT_TRUE(modes_of(width_byte(width), shape_16_9 | 4).empty()) << "64 is nearer to 67";
  }
}

TEST(StdTimingsBlock, FullHdHasTheNumbersOfDmt) {
  const auto modes = modes_of(0xD1, 0xC0);
  ASSERT_EQ(modes.size(), 1U);
  EXPECT_EQ(modes[0].key(), "1920x1080@60");
  EXPECT_EQ(modes[0].timing.flags, 10U);
  EXPECT_EQ(modes[0].type, timing_type_t::dmt);
  EXPECT_EQ(modes[0].location, timing_location_t::standard_block);
}

TEST(StdTimingsBlock, ReducedBlankingComesFirstWhereItIsWanted) {
  const vid_resolution_t reduced = modes_of(width_byte(1280), shape_16_10, 3, true).at(0);
  EXPECT_EQ(reduced.key(), "1280x800@60 RB");
  EXPECT_EQ(reduced.timing.pixel_clock_khz, 71000U);
  EXPECT_EQ(modes_of(width_byte(1280), shape_16_10, 3, false).at(0).timing.pixel_clock_khz, 83500U);
}

TEST(StdTimingsBlock, WithoutAReducedFormThePlainOneIsTaken) {
  EXPECT_EQ(modes_of(0xD1, 0xC0, 3, true).at(0).key(), "1920x1080@60");
}

TEST(StdTimingsBlock, AModeThatDmtHasOnlyWithReducedBlankingIsFoundWithoutTheMarker) {
  const vid_resolution_t mode = modes_of(width_byte(2048), shape_16_9, 3, false).at(0);
  EXPECT_EQ(mode.timing.pixel_clock_khz, 162000U);
  EXPECT_FALSE(mode.reduced_blanking);
}

TEST(StdTimingsBlock, ModesComeInTheOrderOfTheCodes) {
  const auto modes =
      block({0xD1, 0xC0, 1, 1, width_byte(1928), shape_16_9, width_byte(1024), shape_4_3}).modes(3, true);
  ASSERT_EQ(modes.size(), 2U);
  EXPECT_EQ(modes[0].width, 1920);
  EXPECT_EQ(modes[1].width, 1024);
}

TEST(StdTimingsBlock, EveryShapeThatIsAddedIsRead) {
  std_timings_block_t written = block({});
  const char* const keys[] = {"1280x800@60", "1024x768@75", "1280x1024@85",
                              "1280x720@60", "640x480@60",  "1920x1080@60"};
  std::vector<std::string> read;
  for (const char* key : keys) {
    EXPECT_TRUE(written.add(vid_resolution_t{std::string_view(key)})) << key;
    EXPECT_TRUE(written.contains(vid_resolution_t{std::string_view(key)})) << key;
  }
  EXPECT_EQ(written.count(), std::size(keys));
  for (const vid_resolution_t& mode : written.modes(3, false)) {
    read.push_back(mode.key());
  }
  EXPECT_EQ(read, std::vector<std::string>(std::begin(keys), std::end(keys)));
}

TEST(StdTimingsBlock, CodesAreTheOnesOfTheStandard) {
  std_timings_block_t written = block({});
  written.add(vid_resolution_t("1920x1080@60"));
  written.add(vid_resolution_t("1280x1024@75"));
  EXPECT_EQ(written.byte(0), 0xD1);
  EXPECT_EQ(written.byte(1), 0xC0);
  EXPECT_EQ(written.byte(2), 0x81);
  EXPECT_EQ(written.byte(3), 0x8F);
  EXPECT_EQ(written.byte(4), 1);
}

TEST(StdTimingsBlock, AModeThatIsThereIsNotAddedAgain) {
  std_timings_block_t written = block({});
  EXPECT_TRUE(written.add(vid_resolution_t("1920x1080@60")));
  EXPECT_TRUE(written.add(vid_resolution_t("1920x1080@60")));
  EXPECT_EQ(written.count(), 1U);
}

TEST(StdTimingsBlock, WhatNoCodeMeansIsRefused) {
  std_timings_block_t written = block({});
  for (const char* key : {"1366x768@60", "240x180@60", "2560x1440@60", "1928x1085@60", "720x576@50", "1280x720@75",
                          "1920x1080@24", "0x0@60"}) {
    EXPECT_FALSE(written.add(vid_resolution_t{std::string_view(key)})) << key;
  }
  EXPECT_EQ(written.count(), 0U);
}

TEST(StdTimingsBlock, ACodeHasSixBitsForTheRateAlsoBelow60) {
  // 56 is four below 60, which the six bits tell as 120, and there is a mode at 120.
  std_timings_block_t written = block({});
  EXPECT_TRUE(written.add(vid_resolution_t("800x600@56")));
  EXPECT_EQ(written.byte(1), shape_4_3 | 60);
  EXPECT_FALSE(written.contains(vid_resolution_t("800x600@56")));
}

TEST(StdTimingsBlock, ACodeHasTheWidthInSteps) {
  std_timings_block_t written = block({});
  const vid_resolution_t between_steps("644x483@60");
  EXPECT_TRUE(written.add(between_steps));
  EXPECT_FALSE(written.contains(between_steps));
  EXPECT_TRUE(written.contains(vid_resolution_t("640x480@60")));
}

TEST(StdTimingsBlock, ReducedBlankingIsNoPartOfTheCode) {
  vid_resolution_t reduced("1280x800@60");
  reduced.reduced_blanking = true;
  std_timings_block_t written = block({});
  EXPECT_TRUE(written.add(reduced));
  EXPECT_TRUE(written.contains(reduced));
  EXPECT_TRUE(written.contains(vid_resolution_t("1280x800@60")));
}

TEST(StdTimingsBlock, WithEightCodesInUseNothingIsAdded) {
  std_timings_block_t written = block({});
  for (uint8_t i = 0; i < 16; i += 2) {
    written.or_mask(i, 0xD1);
  }
  EXPECT_EQ(written.count(), 8U);
  EXPECT_FALSE(written.add(vid_resolution_t("1280x1024@60")));
}

TEST(StdTimingsBlock, WithEightCodesInUseNotEvenAModeThatIsThereIsAdded) {
  std_timings_block_t written =
      block({0xD1, 0xC0, 0x81, 0x80, 0x81, 0x8F, 0x61, 0x40, 0x61, 0x4F, 0x45, 0x40, 0x45, 0x4F, 0x31, 0x40});
  const vid_resolution_t there("1920x1080@60");
  ASSERT_EQ(written.count(), 8U);
  ASSERT_TRUE(written.contains(there));
  EXPECT_FALSE(written.add(there));
}

TEST(StdTimingsBlock, TheFirstFreePlaceIsTakenAlsoInFrontOfCodesInUse) {
  std_timings_block_t written = block({1, 1, 0xD1, 0xC0});
  EXPECT_TRUE(written.add(vid_resolution_t("1280x1024@60")));
  EXPECT_EQ(written.byte(0), 0x81);
  EXPECT_EQ(written.byte(2), 0xD1);
}

TEST(StdTimingsBlock, OfACodeThatIsThereTwiceTheFirstIsRemoved) {
  std_timings_block_t written = block({0xD1, 0xC0, 0x81, 0x80, 0xD1, 0xC0});
  const vid_resolution_t twice("1920x1080@60");
  EXPECT_TRUE(written.remove(twice));
  EXPECT_EQ(written.byte(0), 1);
  EXPECT_EQ(written.byte(4), 0xD1);
  EXPECT_TRUE(written.contains(twice));
  EXPECT_TRUE(written.remove(twice));
  EXPECT_FALSE(written.remove(twice));
  EXPECT_EQ(written.count(), 1U);
}

TEST(StdTimingsBlock, ARemovedModeLeavesAPlaceForAnother) {
  std_timings_block_t written = block({});
  written.add(vid_resolution_t("1920x1080@60"));
  written.add(vid_resolution_t("1280x1024@60"));
  EXPECT_TRUE(written.remove(vid_resolution_t("1920x1080@60")));
  EXPECT_FALSE(written.remove(vid_resolution_t("1920x1080@60")));
  EXPECT_EQ(written.byte(0), 1);
  EXPECT_EQ(written.byte(1), 1);
  EXPECT_TRUE(written.add(vid_resolution_t("1024x768@60")));
  EXPECT_TRUE(written.contains(vid_resolution_t("1280x1024@60")));
  EXPECT_TRUE(written.contains(vid_resolution_t("1024x768@60")));
}

TEST(StdTimingsBlock, ClearMakesEveryByteTheUnusedCode) {
  std_timings_block_t written = block({0xD1, 0xC0});
  written.clear();
  EXPECT_EQ(written.bytes().size(), 16U);
  for (const uint8_t byte : written.bytes()) {
    EXPECT_EQ(byte, 1);
  }
}

TEST(StdTimingsBlock, WithoutBytesThereIsNoRoom) {
  std_timings_block_t written = block({});
  written.reset();
  EXPECT_FALSE(written.add(vid_resolution_t("1920x1080@60")));
  EXPECT_FALSE(written.contains(vid_resolution_t("1920x1080@60")));
  EXPECT_EQ(written.count(), 0U);
  EXPECT_TRUE(written.modes(3, true).empty());
}
