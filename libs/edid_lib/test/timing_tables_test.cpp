#include "edid_lib/timing_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

using edid_lib::cta_timings;
using edid_lib::dmt_timings;
using edid_lib::established_timings;
using edid_lib::hdmi_timings;
using edid_lib::timing_row_t;
using edid_lib::timing_table_t;
using edid_lib::vid_resolution_t;
using edid_lib::vid_timing_t;

namespace {

const timing_table_t* const all_tables[] = {&established_timings(), &dmt_timings(), &cta_timings(), &hdmi_timings()};

const timing_row_t& row(const timing_table_t& table, std::string_view key) {
  const auto rows = table.by_key();
  const auto found = std::find_if(rows.begin(), rows.end(), [&](const auto* one) { return one->key == key; });
  EXPECT_NE(found, rows.end()) << key;
  return **found;
}

/// What `find` has to answer, by text.
const timing_row_t* find_by_text(const timing_table_t& table, const vid_resolution_t& mode) {
  for (const timing_row_t* one : table.by_key()) {
    if (one->key == mode.key()) {
      return one;
    }
  }
  return nullptr;
}

void expect_rises(std::initializer_list<uint32_t> numbers, std::string_view key) {
  EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end())) << key;
}

void expect_flags(uint32_t flags, std::initializer_list<uint32_t> vics) {
  for (const uint32_t vic : vics) {
    EXPECT_EQ(cta_timings().find_number(vic)->timing.flags, flags) << vic;
  }
}

/// The rate that a row's key ought to tell: of fields for interlaced rows.
float key_rate(const timing_row_t& one) {
  const vid_resolution_t mode(one.timing);
  return mode.interlaced && one.key != "1024x768i@43" ? mode.fps * 2 : mode.fps;
}

}  // namespace

TEST(TimingTables, HaveTheirRows) {
  EXPECT_EQ(established_timings().by_key().size(), 17U);
  EXPECT_EQ(dmt_timings().by_key().size(), 88U);
  EXPECT_EQ(cta_timings().by_key().size(), 107U);
  EXPECT_EQ(hdmi_timings().by_key().size(), 4U);
}

TEST(TimingTables, AreInKeyOrderWithoutRepetition) {
  for (const timing_table_t* table : all_tables) {
    const auto rows = table->by_key();
    EXPECT_TRUE(std::is_sorted(rows.begin(), rows.end(), [](const auto* a, const auto* b) { return a->key < b->key; }));
    std::set<std::string_view> keys;
    for (const timing_row_t* one : rows) {
      EXPECT_TRUE(keys.insert(one->key).second) << one->key;
    }
  }
}

TEST(TimingTables, NumbersAgreeWithTheKeys) {
  for (const timing_table_t* table : all_tables) {
    for (const timing_row_t* one : table->by_key()) {
      const vid_resolution_t named(one->key);
      EXPECT_EQ(static_cast<uint32_t>(named.width), one->timing.h_active) << one->key;
      EXPECT_EQ(static_cast<uint32_t>(named.height), one->timing.v_active) << one->key;
      EXPECT_EQ(named.interlaced, vid_resolution_t(one->timing).interlaced) << one->key;
      EXPECT_NEAR(named.fps, key_rate(*one), 0.9) << one->key;
    }
  }
}

TEST(TimingTables, PositionsRiseAndEachDirectionHasOneSyncPolarity) {
  for (const timing_table_t* table : all_tables) {
    for (const timing_row_t* one : table->by_key()) {
      const vid_timing_t& t = one->timing;
      expect_rises({t.h_active, t.h_sync_start, t.h_sync_end, t.h_total}, one->key);
      expect_rises({t.v_active, t.v_sync_start, t.v_sync_end, t.v_total}, one->key);
      EXPECT_TRUE((t.flags & 3) == 1 || (t.flags & 3) == 2) << one->key;
      EXPECT_TRUE((t.flags & 12) == 4 || (t.flags & 12) == 8) << one->key;
    }
  }
}

TEST(TimingTables, RowsThatDifferFromTheStandardsStay) {
  EXPECT_EQ(row(dmt_timings(), "1024x768i@43").timing,
            (vid_timing_t{44900, 1024, 1032, 1208, 1264, 768, 768, 772, 817, 21}));
  EXPECT_EQ(row(established_timings(), "1024x768i@43").timing.v_sync_end, 776U);
  EXPECT_EQ(row(dmt_timings(), "1366x768@60").timing,
            (vid_timing_t{85500, 1366, 1436, 1579, 1792, 768, 771, 774, 798, 5}));
  EXPECT_EQ(row(dmt_timings(), "1366x768@60 RB").timing,
            (vid_timing_t{72000, 1366, 1380, 1436, 1500, 768, 769, 772, 800, 5}));
  EXPECT_EQ(row(dmt_timings(), "1600x900@60 RB").timing,
            (vid_timing_t{108000, 1600, 1624, 1704, 1800, 900, 901, 904, 1000, 5}));
  EXPECT_EQ(row(dmt_timings(), "1920x1080@60").timing.flags, 10U);
  EXPECT_EQ(row(cta_timings(), "1920x1080@60").timing.flags, 5U);
  EXPECT_EQ(row(dmt_timings(), "2048x1152@60 RB").timing.h_sync_start, 2074U);
  EXPECT_EQ(row(dmt_timings(), "4096x2160@60").timing.pixel_clock_khz, 556744U);
  EXPECT_EQ(row(dmt_timings(), "4096x2160@59.94").timing.pixel_clock_khz, 556188U);
  EXPECT_EQ(row(established_timings(), "1152x864@75").number, 16U);
  EXPECT_EQ(cta_timings().find_number(39)->timing,
            (vid_timing_t{72000, 1920, 1952, 2120, 2304, 1080, 1126, 1136, 1250, 25}));
  EXPECT_EQ(cta_timings().find_number(64)->timing.v_sync_end, 1094U);
  EXPECT_EQ(cta_timings().find_number(77)->timing.v_sync_end, 1089U);
}

TEST(TimingTables, CtaRowsHaveTheFlagsOfTheirScanAndPixelRepetition) {
  expect_flags(0x101A, {6, 7, 21, 22, 44, 45, 50, 51, 54, 55, 58, 59});
  expect_flags(0x100A, {8, 9, 23, 24});
  expect_flags(26, {10, 11, 25, 26});
  expect_flags(21, {5, 20, 40, 46});
  expect_flags(10, {1, 2, 3, 12, 13, 14, 15, 17, 18, 27, 28, 29, 30});
  expect_flags(5, {4, 16, 19, 31, 32, 33, 34, 60, 63, 65, 86, 93, 97, 107});
}

TEST(TimingTables, CtaRowsAreNumberedByTheirCodes) {
  EXPECT_EQ(row(cta_timings(), "640x480@59.94").number, 1U);
  EXPECT_EQ(row(cta_timings(), "1920x1080@60").number, 16U);
  EXPECT_EQ(row(cta_timings(), "1280x720@24 4:3").number, 65U);
  EXPECT_EQ(row(cta_timings(), "3840x2160@60").number, 97U);
  EXPECT_EQ(row(cta_timings(), "3840x2160@60 4:3").number, 107U);
}

TEST(TimingTables, HdmiRowsAreNumberedByTheirCodes) {
  EXPECT_EQ(hdmi_timings().find_number(1)->key, "3840x2160@30");
  EXPECT_EQ(hdmi_timings().find_number(2)->key, "3840x2160@25");
  EXPECT_EQ(hdmi_timings().find_number(3)->key, "3840x2160@24");
  EXPECT_EQ(hdmi_timings().find_number(4)->key, "4096x2160@24");
}

TEST(TimingTables, NumbersOutsideTheTableHaveNoRow) {
  EXPECT_EQ(cta_timings().find_number(0), nullptr);
  EXPECT_EQ(cta_timings().find_number(108), nullptr);
  EXPECT_EQ(cta_timings().named_mode(0), nullptr);
  EXPECT_EQ(established_timings().find_number(17), nullptr);
  EXPECT_NE(established_timings().find_number(0), nullptr);
}

TEST(TimingTables, LookUpAnswersAsAComparisonOfKeysWould) {
  for (const timing_table_t* table : all_tables) {
    for (const timing_table_t* other : all_tables) {
      for (const timing_row_t* one : other->by_key()) {
        vid_resolution_t mode(one->key);
        EXPECT_EQ(table->find(mode), find_by_text(*table, mode)) << mode.key();
        mode.pixel_aspect_x = std::fabs(mode.pixel_aspect_x);
        EXPECT_EQ(table->find(mode), find_by_text(*table, mode)) << mode.key();
        const vid_resolution_t timed(one->timing);
        EXPECT_EQ(table->find(timed), find_by_text(*table, timed)) << timed.key();
      }
    }
  }
}

TEST(TimingTables, LookUpTakesAspectsByTheirText) {
  vid_resolution_t mode("720x480@59.94 8:9");
  mode.pixel_aspect_x = std::nextafter(8.0F, 9.0F);
  EXPECT_EQ(mode.key(), "720x480@59.94 8:9");
  EXPECT_EQ(cta_timings().find(mode), cta_timings().find_number(2));
  mode = vid_resolution_t("1920x1080@60");
  mode.pixel_aspect_x = std::nextafter(1.0F, 2.0F);
  EXPECT_EQ(mode.key(), "1920x1080@60 1:1");
  EXPECT_EQ(cta_timings().find(mode), nullptr);
  mode.pixel_aspect_x = std::nanf("");
  EXPECT_EQ(cta_timings().find(mode), nullptr);
}

TEST(TimingTables, RowsAtRatesThatModesNeverHaveAreNotFound) {
  EXPECT_EQ(cta_timings().find(vid_resolution_t("1280x720@100")), nullptr);
  EXPECT_EQ(dmt_timings().find(vid_resolution_t("1600x1200@65")), nullptr);
}
