#include "edid_lib/cta_video_data_block.h"

#include <gtest/gtest.h>

#include "test_support/edid_builder.h"

using edid_lib::cta_video_data_block_t;
using edid_lib::timing_location_t;
using edid_lib::timing_type_t;
using edid_lib::vid_resolution_t;
using test_support::data_block;

namespace {

std::vector<vid_resolution_t> modes_of(std::initializer_list<uint8_t> descriptors) {
  return cta_video_data_block_t(data_block(2, descriptors)).modes();
}

std::vector<std::string> texts_of(std::initializer_list<uint8_t> descriptors) {
  std::vector<std::string> texts;
  for (const vid_resolution_t& mode : modes_of(descriptors)) {
    texts.push_back(mode.list_text());
  }
  return texts;
}

using texts_t = std::vector<std::string>;

}  // namespace

TEST(CtaVideoDataBlock, ACodeGivesItsModeAndTheModeAtTheOtherRate) {
  const auto modes = modes_of({31, 16});
  ASSERT_EQ(modes.size(), 3U);
  EXPECT_EQ(modes[0].key(), "1920x1080@50");
  EXPECT_EQ(modes[1].key(), "1920x1080@60");
  EXPECT_EQ(modes[2].key(), "1920x1080@59.94");
  EXPECT_EQ(modes[1].type, timing_type_t::cta);
  EXPECT_EQ(modes[2].type, timing_type_t::undefined);
  for (const vid_resolution_t& mode : modes) {
    EXPECT_EQ(mode.location, timing_location_t::cta_video_data_block);
  }
}

TEST(CtaVideoDataBlock, ACodeAtAFractionalRateGivesOneMode) {
  EXPECT_EQ(texts_of({1}), (texts_t{"640x480p59.94 (preferred)"}));
}

TEST(CtaVideoDataBlock, TheFirstCodeAndItsOtherRateArePreferred) {
  EXPECT_EQ(texts_of({4, 19}), (texts_t{"1280x720p60 (preferred)", "1280x720p59.94 (preferred)", "1280x720p50"}));
}

TEST(CtaVideoDataBlock, ANativeCodeIsPreferredWhereverItStands) {
  EXPECT_EQ(texts_of({31, 0x90}),
            (texts_t{"1920x1080p50 (preferred)", "1920x1080p60 (preferred)", "1920x1080p59.94 (preferred)"}));
  EXPECT_EQ(texts_of({31, 192}), (texts_t{"1920x1080p50 (preferred)", "1920x1080p88 (preferred)"}));
}

TEST(CtaVideoDataBlock, CodesWithoutARowGiveNothing) {
  EXPECT_TRUE(texts_of({0, 0x80, 108, 127, 193, 252, 253, 254, 255}).empty());
  EXPECT_TRUE(texts_of({}).empty());
}

TEST(CtaVideoDataBlock, AnUnknownFirstCodeLeavesNothingPreferred) {
  EXPECT_EQ(texts_of({0x80, 31}), (texts_t{"1920x1080p50"}));
}

TEST(CtaVideoDataBlock, TheOtherRateOfAModeWithOddPixelsHasSquareOnes) {
  const auto modes = modes_of({76});
  ASSERT_EQ(modes.size(), 2U);
  EXPECT_EQ(modes[0].key(), "1920x1080@60 4:3");
  EXPECT_EQ(modes[1].key(), "1920x1080@59.94");
}

TEST(CtaVideoDataBlock, FormatsNamedByAWholeRateThatRunSlowerGetOneMoreStepDown) {
  const auto modes = modes_of({48});
  ASSERT_EQ(modes.size(), 2U);
  EXPECT_EQ(modes[0].timing.pixel_clock_khz, 54000U);
  EXPECT_EQ(modes[0].fps, 120);
  EXPECT_EQ(modes[1].timing.pixel_clock_khz, 53946U);
}

TEST(CtaVideoDataBlock, AddsCodesNotMarkedNative) {
  cta_video_data_block_t block;
  EXPECT_TRUE(block.valid());
  EXPECT_TRUE(block.add(vid_resolution_t("1920x1080@60")));
  EXPECT_TRUE(block.add(vid_resolution_t("640x480@60")));
  EXPECT_EQ(block.byte(0), 2 << 5 | 2);
  EXPECT_EQ(block.byte(1), 16);
  EXPECT_EQ(block.byte(2), 1);
}

TEST(CtaVideoDataBlock, AModeWithoutCodeIsNotAdded) {
  cta_video_data_block_t block;
  EXPECT_FALSE(block.add(vid_resolution_t("1024x768@60")));
  EXPECT_FALSE(block.add(vid_resolution_t("1920x1080@59.94")));
  EXPECT_EQ(block.size(), 1U);
}

TEST(CtaVideoDataBlock, HasRoomFor31Codes) {
  cta_video_data_block_t block;
  for (int i = 0; i < 31; ++i) {
    EXPECT_TRUE(block.has_room());
    EXPECT_TRUE(block.add(vid_resolution_t("1920x1080@60")));
  }
  EXPECT_FALSE(block.has_room());
  EXPECT_FALSE(block.add(vid_resolution_t("1920x1080@60")));
  EXPECT_EQ(block.byte(0), 2 << 5 | 31);
  EXPECT_EQ(block.size(), 32U);
}

TEST(CtaVideoDataBlock, ClearLeavesNoCodes) {
  cta_video_data_block_t block(data_block(2, {16, 31}));
  block.clear();
  EXPECT_EQ(block.size(), 1U);
  EXPECT_EQ(block.byte(0), 2 << 5);
  EXPECT_TRUE(block.modes().empty());
}

TEST(CtaVideoDataBlock, WithoutBytesItTakesNoCode) {
  cta_video_data_block_t block(data_block(2, {16, 31}));
  block.reset();
  EXPECT_FALSE(block.has_room());
  EXPECT_FALSE(block.add(vid_resolution_t("1920x1080@60")));
  EXPECT_EQ(block.size(), 0U);
  EXPECT_FALSE(block.valid());
}

TEST(CtaVideoDataBlock, ClearedWithoutBytesItHasOneThatTellsOfNoCodesButNotTheTag) {
  cta_video_data_block_t block(data_block(2, {16, 31}));
  block.reset();
  block.clear();
  EXPECT_EQ(block.size(), 1U);
  EXPECT_EQ(block.byte(0), 0);
  EXPECT_FALSE(block.valid());
}

TEST(CtaVideoDataBlock, TellsWhereAModeStandsAndWhetherItIsNative) {
  const cta_video_data_block_t block(data_block(2, {31, 0x90, 97, 193}));
  const auto full_hd = block.contains(vid_resolution_t("1920x1080@60"));
  ASSERT_TRUE(full_hd.has_value());
  EXPECT_EQ(full_hd->index, 1U);
  EXPECT_TRUE(full_hd->native);
  const auto ultra_hd = block.contains(vid_resolution_t("3840x2160@60"));
  ASSERT_TRUE(ultra_hd.has_value());
  EXPECT_EQ(ultra_hd->index, 2U);
  EXPECT_FALSE(ultra_hd->native);
  EXPECT_FALSE(block.contains(vid_resolution_t("640x480@60")).has_value());
  EXPECT_FALSE(block.contains(vid_resolution_t("1024x768@60")).has_value());
}
