#include "edid_lib/det_timings_block.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "test_support/edid_builder.h"

using edid_lib::det_timings_block_t;
using edid_lib::timing_location_t;
using edid_lib::timing_type_t;
using edid_lib::vid_resolution_t;
using edid_lib::vid_timing_t;
using test_support::detailed_entry;
using test_support::detailed_entry_t;

namespace {

constexpr vid_timing_t full_hd = {148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5};

std::vector<vid_resolution_t> modes_of(const detailed_entry_t& entry) {
  return det_timings_block_t(entry, 54, 1).modes();
}

/// A field of an interlaced format, as displays tell it.
detailed_entry_t field(vid_timing_t timing) {
  timing.flags |= edid_lib::interlaced_scan;
  return detailed_entry(timing);
}

}  // namespace

TEST(DetTimingsBlock, HasAName) { EXPECT_EQ(det_timings_block_t({}, 54, 1).name(), "Detailed Timings"); }

TEST(DetTimingsBlock, HasItsPlaceAndItsRoom) {
  const det_timings_block_t block(detailed_entry(full_hd), 54, 2);
  EXPECT_EQ(block.offset(), 54U);
  EXPECT_EQ(block.capacity(), 2U);
  EXPECT_EQ(block.size(), 36U);
  EXPECT_EQ(block.byte(35), 1);
}

TEST(DetTimingsBlock, DecodesTheNumbersOfAnEntry) {
  const auto modes = modes_of(detailed_entry(full_hd));
  ASSERT_EQ(modes.size(), 1U);
  EXPECT_EQ(modes[0].timing, full_hd);
  EXPECT_EQ(modes[0].key(), "1920x1080@60");
  EXPECT_EQ(modes[0].type, timing_type_t::cta);
  EXPECT_EQ(modes[0].location, timing_location_t::detailed_timing_descriptor);
}

TEST(DetTimingsBlock, DecodesTheUpperBitsOfEveryNumber) {
  const vid_timing_t large{655350,         4095, 4095 + 1023, 4095 + 1023 + 1023, 8190, 4095, 4095 + 63,
                           4095 + 63 + 63, 8190, 10};
  const auto modes = modes_of(detailed_entry(large));
  ASSERT_EQ(modes.size(), 1U);
  EXPECT_EQ(modes[0].timing, large);
}

TEST(DetTimingsBlock, DecodesImageSizeAndBorders) {
  detailed_entry_t entry = detailed_entry(full_hd);
  entry[12] = 0x34;
  entry[13] = 0x78;
  entry[14] = 0x12;
  entry[15] = 5;
  entry[16] = 6;
  const vid_resolution_t mode = modes_of(entry).at(0);
  EXPECT_EQ(mode.h_image_mm, 0x134U);
  EXPECT_EQ(mode.v_image_mm, 0x278U);
  EXPECT_EQ(mode.h_border, 5U);
  EXPECT_EQ(mode.v_border, 6U);
}

TEST(DetTimingsBlock, PolaritiesAreAlwaysTold) {
  detailed_entry_t entry = detailed_entry(full_hd);
  entry[17] = 0;
  EXPECT_EQ(modes_of(entry).at(0).timing.flags, 2U | 8U);
  entry[17] = 0x2;
  EXPECT_EQ(modes_of(entry).at(0).timing.flags, 1U | 8U);
  entry[17] = 0x4;
  EXPECT_EQ(modes_of(entry).at(0).timing.flags, 2U | 4U);
}

TEST(DetTimingsBlock, AnEntryWithoutClockIsNoTiming) {
  detailed_entry_t entry = detailed_entry(full_hd);
  entry[0] = 0;
  entry[1] = 0;
  EXPECT_TRUE(modes_of(entry).empty());
}

TEST(DetTimingsBlock, APictureBelow64OnASideIsNoTiming) {
  EXPECT_TRUE(modes_of(detailed_entry({10000, 63, 70, 80, 100, 480, 490, 492, 525, 0})).empty());
  EXPECT_TRUE(modes_of(detailed_entry({10000, 640, 650, 660, 800, 63, 64, 65, 70, 0})).empty());
  EXPECT_EQ(modes_of(detailed_entry({10000, 64, 70, 80, 100, 64, 65, 66, 70, 0})).size(), 1U);
}

TEST(DetTimingsBlock, AnEntryWithoutSyncPulseIsNoTiming) {
  EXPECT_TRUE(modes_of(detailed_entry({148500, 1920, 2008, 2008, 2200, 1080, 1084, 1089, 1125, 5})).empty());
  EXPECT_TRUE(modes_of(detailed_entry({148500, 1920, 2008, 2052, 2200, 1080, 1084, 1084, 1125, 5})).empty());
}

TEST(DetTimingsBlock, ASyncPulseBehindTheTotalMakesTheTotalLonger) {
  const vid_resolution_t mode =
      modes_of(detailed_entry({148500, 1920, 2008, 2052, 2000, 1080, 1084, 1089, 1085, 5})).at(0);
  EXPECT_EQ(mode.timing.h_total, 2053U);
  EXPECT_EQ(mode.timing.v_total, 1090U);
}

TEST(DetTimingsBlock, ASyncPulseUpToTheTotalLeavesItAsItIs) {
  const vid_resolution_t mode =
      modes_of(detailed_entry({148500, 1920, 2008, 2052, 2052, 1080, 1084, 1089, 1089, 5})).at(0);
  EXPECT_EQ(mode.timing.h_total, 2052U);
  EXPECT_EQ(mode.timing.v_total, 1089U);
}

TEST(DetTimingsBlock, AFieldOfAKnownFormatBecomesItsFrame) {
  const vid_resolution_t mode = modes_of(field({74250, 1920, 2008, 2052, 2200, 540, 542, 547, 562, 5})).at(0);
  EXPECT_EQ(mode.timing, (vid_timing_t{74250, 1920, 2008, 2052, 2200, 1080, 1084, 1094, 1125, 21}));
  EXPECT_FLOAT_EQ(mode.fps, 30);
  EXPECT_EQ(mode.key(), "1920x1080i@30");
  EXPECT_EQ(mode.type, timing_type_t::undefined);
}

TEST(DetTimingsBlock, EveryKnownInterlacedFormatIsDoubled) {
  const std::pair<uint32_t, uint32_t> formats[] = {{1920, 540}, {720, 240},  {1440, 240}, {2880, 240},
                                                   {720, 288},  {1440, 288}, {2880, 288}};
  for (const auto& [width, height] : formats) {
    const auto entry =
        field({27000, width, width + 10, width + 20, width + 30, height, height + 2, height + 5, height + 22, 10});
    EXPECT_EQ(modes_of(entry).at(0).height, static_cast<int32_t>(2 * height)) << width;
    EXPECT_EQ(modes_of(entry).at(0).timing.v_total, 2 * (height + 22) + 1) << width;
  }
}

TEST(DetTimingsBlock, OtherInterlacedTimingsAreTakenAsTheyAre) {
  const vid_resolution_t mode = modes_of(field({44900, 1024, 1032, 1208, 1264, 768, 769, 776, 817, 5})).at(0);
  EXPECT_EQ(mode.height, 768);
  EXPECT_EQ(mode.timing.v_total, 817U);
  EXPECT_TRUE(mode.interlaced);
}

TEST(DetTimingsBlock, AFieldIsKnownByWidthAndHeightTogether) {
  for (const auto& [width, height] : {std::pair(1280U, 540U), std::pair(1024U, 240U), std::pair(1920U, 288U)}) {
    const auto entry =
        field({27000, width, width + 10, width + 20, width + 30, height, height + 2, height + 5, height + 22, 10});
    const vid_resolution_t mode = modes_of(entry).at(0);
    EXPECT_EQ(mode.height, static_cast<int32_t>(height)) << width;
    EXPECT_EQ(mode.timing.v_sync_end, height + 5) << width;
    EXPECT_EQ(mode.timing.v_total, height + 22) << width;
    EXPECT_TRUE(mode.interlaced);
  }
}

TEST(DetTimingsBlock, AFieldIsMadeLongEnoughForItsSyncPulseBeforeItBecomesAFrame) {
  const vid_resolution_t mode = modes_of(field({74250, 1920, 2008, 2052, 2200, 540, 542, 547, 545, 5})).at(0);
  EXPECT_EQ(mode.timing, (vid_timing_t{74250, 1920, 2008, 2052, 2200, 1080, 1084, 1094, 2 * 548 + 1, 21}));
}

TEST(DetTimingsBlock, ModesComeInTheOrderOfTheEntriesThatAreTimings) {
  std::vector<uint8_t> bytes;
  for (const auto& entry : {detailed_entry(full_hd), detailed_entry_t{},
                            detailed_entry({40000, 800, 840, 968, 1056, 600, 601, 605, 628, 5})}) {
    bytes.insert(bytes.end(), entry.begin(), entry.end());
  }
  const auto modes = det_timings_block_t(bytes, 0, 3).modes();
  ASSERT_EQ(modes.size(), 2U);
  EXPECT_EQ(modes[0].width, 1920);
  EXPECT_EQ(modes[1].width, 800);
  EXPECT_EQ(modes[1].type, timing_type_t::dmt);
}

TEST(DetTimingsBlock, CapacityCutsAndPads) {
  det_timings_block_t block(detailed_entry(full_hd), 54, 1);
  block.set_capacity(3);
  EXPECT_EQ(block.size(), 54U);
  EXPECT_EQ(block.byte(53), 1);
  EXPECT_EQ(block.modes().size(), 1U);
  block.set_capacity(0);
  EXPECT_EQ(block.size(), 0U);
}

TEST(DetTimingsBlock, GivesTheBytesOfAnEntry) {
  const auto entry = detailed_entry(full_hd);
  const det_timings_block_t block(entry, 54, 2);
  EXPECT_TRUE(std::equal(entry.begin(), entry.end(), block.on_get(0).begin(), block.on_get(0).end()));
  EXPECT_EQ(block.on_get(1).size(), 18U);
  EXPECT_TRUE(block.on_get(2).empty());
}

TEST(DetTimingsBlock, AddedModesAreRead) {
  det_timings_block_t block({}, 54, 2);
  EXPECT_FALSE(block.add(vid_resolution_t(full_hd))) << "padding is in use";
  block.clear();
  EXPECT_TRUE(block.add(vid_resolution_t(full_hd)));
  EXPECT_TRUE(block.add(vid_resolution_t("800x600@60")));
  EXPECT_FALSE(block.add(vid_resolution_t(full_hd)));
  EXPECT_EQ(block.count(), 2U);
  const auto modes = block.modes();
  ASSERT_EQ(modes.size(), 2U);
  EXPECT_EQ(modes[0].timing, full_hd);
  EXPECT_EQ(modes[1].key(), "800x600@60");
}

TEST(DetTimingsBlock, AnEntryHasTheBytesOfTheStandard) {
  det_timings_block_t block({}, 54, 1);
  block.clear();
  vid_resolution_t mode(full_hd);
  mode.h_image_mm = 0x6A4;
  mode.v_image_mm = 0x3BD;
  mode.h_border = 7;
  mode.v_border = 9;
  ASSERT_TRUE(block.add(mode));
  const uint8_t expected[] = {0x02, 0x3A, 0x80, 0x18, 0x71, 0x38, 0x2D, 0x40, 0x58,
                              0x2C, 0x45, 0x00, 0xA4, 0xBD, 0x63, 7,    7,    0x1E};
  const auto written = block.on_get(0);
  EXPECT_TRUE(std::equal(written.begin(), written.end(), std::begin(expected), std::end(expected)));
}

TEST(DetTimingsBlock, ModesWithoutTimingOrAbove4095AreNotAdded) {
  det_timings_block_t block({}, 54, 1);
  block.clear();
  EXPECT_FALSE(block.add(vid_resolution_t("1x1@60")));
  EXPECT_FALSE(block.add(vid_resolution_t("4096x2160@60")));
  vid_timing_t tall = full_hd;
  tall.v_active = 4096;
  EXPECT_FALSE(block.add(vid_resolution_t(tall)));
  EXPECT_EQ(block.count(), 0U);
  EXPECT_TRUE(block.add(vid_resolution_t("3840x2160@60")));
}

TEST(DetTimingsBlock, AClockThatAnEntryTellsAsNoneIsWrittenAndTakesNoPlace) {
  det_timings_block_t block({}, 54, 1);
  block.clear();
  for (const uint32_t clock : {0U, 9U, 655360U, 655369U, 2U * 655360U}) {
    vid_timing_t timing = full_hd;
    timing.pixel_clock_khz = clock;
    EXPECT_TRUE(block.add(vid_resolution_t(timing))) << clock;
    EXPECT_EQ(block.byte(2), 0x80) << clock;
    EXPECT_EQ(block.count(), 0U) << clock;
    EXPECT_TRUE(block.modes().empty()) << clock;
  }
  vid_timing_t slowest = full_hd;
  slowest.pixel_clock_khz = 10;
  EXPECT_TRUE(block.add(vid_resolution_t(slowest)));
  EXPECT_EQ(block.modes().size(), 1U);
}

TEST(DetTimingsBlock, AModeWithoutAnEntryLeavesItsPlaceZeroed) {
  std::vector<uint8_t> bytes(18, 0);
  const auto entry = detailed_entry(full_hd);
  bytes.insert(bytes.end(), entry.begin(), entry.end());
  det_timings_block_t block(bytes, 54, 2);
  EXPECT_FALSE(block.add(vid_resolution_t("4096x2160@60")));
  EXPECT_EQ(block.size(), 36U);
  for (const uint8_t byte : block.bytes()) {
    EXPECT_EQ(byte, 0);
  }
}

TEST(DetTimingsBlock, WithoutRoomNothingIsZeroed) {
  const auto entry = detailed_entry(full_hd);
  det_timings_block_t block(entry, 54, 1);
  EXPECT_FALSE(block.add(vid_resolution_t("4096x2160@60")));
  EXPECT_TRUE(std::equal(entry.begin(), entry.end(), block.bytes().begin(), block.bytes().end()));
}

TEST(DetTimingsBlock, NumbersLoseTheHighBitsThatDoNotFit) {
  vid_timing_t large = full_hd;
  large.pixel_clock_khz = 655360 + 148500;
  large.h_sync_start = 1920 + 1024 + 88;
  large.h_sync_end = large.h_sync_start + 44;
  large.h_total = 1920 + 4096 + 280;
  det_timings_block_t block({}, 54, 1);
  block.clear();
  ASSERT_TRUE(block.add(vid_resolution_t(large)));
  EXPECT_EQ(block.modes().at(0).timing, full_hd);
}

TEST(DetTimingsBlock, InterlacedModesAreWrittenWithTheLinesOfTheirFrames) {
  const vid_timing_t interlaced = {74250, 1920, 2008, 2052, 2200, 1080, 1084, 1094, 1125, 21};
  det_timings_block_t block({}, 54, 1);
  block.clear();
  ASSERT_TRUE(block.add(vid_resolution_t(interlaced)));
  EXPECT_EQ(block.modes().at(0).timing, interlaced);
  EXPECT_EQ(block.on_get(0)[17], 0x9E);
}

TEST(DetTimingsBlock, TheNextEntryIsCountedNotLookedFor) {
  std::vector<uint8_t> bytes(18, 0);
  const auto entry = detailed_entry(full_hd);
  bytes.insert(bytes.end(), entry.begin(), entry.end());
  det_timings_block_t block(bytes, 54, 2);
  EXPECT_EQ(block.count(), 1U);
  EXPECT_TRUE(block.add(vid_resolution_t("800x600@60")));
  EXPECT_EQ(block.modes().size(), 1U);
  EXPECT_EQ(block.modes()[0].key(), "800x600@60");
}

TEST(DetTimingsBlock, WithoutBytesThereIsNoRoom) {
  det_timings_block_t block(detailed_entry(full_hd), 54, 2);
  block.reset();
  EXPECT_FALSE(block.add(vid_resolution_t(full_hd)));
  EXPECT_TRUE(block.modes().empty());
  EXPECT_TRUE(block.on_get(0).empty());
}
