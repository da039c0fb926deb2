#include "edid_lib/est_timings_block.h"

#include <gtest/gtest.h>

#include <array>
#include <iterator>
#include <string_view>

#include "edid_lib/timing_tables.h"

using edid_lib::est_timings_block_t;
using edid_lib::vid_resolution_t;

namespace {

/// The lowest bit of the first byte comes first.
constexpr std::string_view keys_by_bit[] = {"800x600@60",  "800x600@56",  "640x480@75",   "640x480@72",   "640x480@67",
                                            "640x480@60",  "720x400@88",  "720x400@70",   "1280x1024@75", "1024x768@75",
                                            "1024x768@70", "1024x768@60", "1024x768i@43", "832x624@75",   "800x600@75",
                                            "800x600@72",  "1152x864@75"};

est_timings_block_t block(std::array<uint8_t, 3> bytes) { return est_timings_block_t(bytes); }

}  // namespace

TEST(EstTimingsBlock, IsAlwaysThreeBytes) {
  EXPECT_EQ(est_timings_block_t(std::array<uint8_t, 1>{0xFF}).size(), 3U);
  EXPECT_EQ(est_timings_block_t(std::array<uint8_t, 1>{0xFF}).byte(1), 0);
  EXPECT_EQ(est_timings_block_t(std::array<uint8_t, 4>{1, 2, 3, 4}).size(), 3U);
}

TEST(EstTimingsBlock, IsValidWith640x480At60) {
  EXPECT_TRUE(block({0x20, 0, 0}).valid());
  EXPECT_FALSE(block({0xDF, 0xFF, 0xFF}).valid());
}

TEST(EstTimingsBlock, EachModeHasItsBit) {
  for (std::size_t bit = 0; bit < std::size(keys_by_bit); ++bit) {
    std::array<uint8_t, 3> bytes{};
    bytes[bit / 8] = bit == 16 ? uint8_t{0x80} : static_cast<uint8_t>(1U << bit % 8);
    const auto modes = block(bytes).modes();
    ASSERT_EQ(modes.size(), 1U) << keys_by_bit[bit];
    EXPECT_EQ(modes[0].key(), keys_by_bit[bit]);
    EXPECT_TRUE(block(bytes).contains(vid_resolution_t(keys_by_bit[bit])));
  }
}

TEST(EstTimingsBlock, BitsOfTheThirdByteBelowTheHighestMeanNothing) {
  EXPECT_TRUE(block({0, 0, 0x7F}).modes().empty());
}

TEST(EstTimingsBlock, ContainsNoModeThatHasNoBit) {
  EXPECT_FALSE(block({0xFF, 0xFF, 0xFF}).contains(vid_resolution_t("1920x1080@60")));
}

TEST(EstTimingsBlock, ModesComeInTheOrderOfTheirKeys) {
  const auto modes = block({0xFF, 0xFF, 0xFF}).modes();
  ASSERT_EQ(modes.size(), 17U);
  EXPECT_EQ(modes[0].timing.pixel_clock_khz, 65000U);
  EXPECT_EQ(modes[3].interlaced, true);
  EXPECT_EQ(modes[5].width, 1280);
  EXPECT_EQ(modes[6].width, 640);
  EXPECT_EQ(modes[16].width, 832);
}

TEST(EstTimingsBlock, ModesHaveComputedRates) {
  const auto modes = block({0x20, 0, 0}).modes();
  ASSERT_EQ(modes.size(), 1U);
  EXPECT_NEAR(modes[0].fps, 59.94, 0.001);
  EXPECT_EQ(modes[0].key(), "640x480@60");
  EXPECT_EQ(modes[0].type, edid_lib::timing_type_t::established);
  EXPECT_EQ(modes[0].location, edid_lib::timing_location_t::established_block);
}

TEST(EstTimingsBlock, EveryModeHasItsBit) {
  for (const edid_lib::timing_row_t* row : edid_lib::established_timings().by_key()) {
    const vid_resolution_t mode(row->key);
    est_timings_block_t block({});
    block.set(mode, true);
    EXPECT_TRUE(block.contains(mode)) << row->key;
    ASSERT_EQ(block.modes().size(), 1U) << row->key;
    EXPECT_EQ(block.modes()[0].timing, row->timing);
    const std::size_t index = row->number;
    EXPECT_EQ(block.byte(static_cast<uint8_t>(index / 8)), index == 16 ? 0x80 : 1 << index % 8);
    block.set(mode, false);
    EXPECT_TRUE(block.modes().empty());
  }
}

TEST(EstTimingsBlock, AModeThatHasNoBitCannotBeSet) {
  est_timings_block_t block({});
  block.set(vid_resolution_t("1920x1080@60"), true);
  EXPECT_TRUE(block.modes().empty());
  block.set(vid_resolution_t("640x480@59.94"), true);
  EXPECT_TRUE(block.modes().empty());
}

TEST(EstTimingsBlock, ClearedOrResetItHasNoModes) {
  est_timings_block_t block(std::vector<uint8_t>{0xFF, 0xFF, 0xFF});
  EXPECT_EQ(block.modes().size(), 17U);
  block.clear();
  EXPECT_EQ(block.size(), 3U);
  EXPECT_TRUE(block.modes().empty());
  block.reset();
  EXPECT_TRUE(block.modes().empty());
  EXPECT_FALSE(block.valid());
}
