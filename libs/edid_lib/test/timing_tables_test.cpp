#include "edid_lib/timing_tables.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "edid_lib/tables/timing_rows.h"
#include "test_support/comma_locale.h"

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

TEST(TimingTables, CtaRowsHaveTheFlagsOfTheirScanAndPixelRepetition) {
  expect_flags(0x101A, {6, 7, 21, 22, 44, 45, 50, 51, 54, 55, 58, 59});
  expect_flags(0x100A, {8, 9, 23, 24});
  expect_flags(26, {10, 11, 25, 26});
  expect_flags(21, {5, 20, 40, 46});
  expect_flags(10, {1, 2, 3, 12, 13, 14, 15, 17, 18, 27, 28, 29, 30});
  expect_flags(5, {4, 16, 19, 31, 32, 33, 34, 60, 63, 65, 86, 93, 97, 107});
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

TEST(TimingTables, AreTheSameInEveryLocale) {
  const test_support::comma_locale_t comma;
  const timing_table_t table(edid_lib::tables::cta_rows());
  const vid_resolution_t mode("720x480@59.94 8:9");
  ASSERT_NE(table.find(mode), nullptr);
  EXPECT_EQ(table.find(mode)->number, 2U);
  ASSERT_NE(table.named_mode(1), nullptr);
  EXPECT_EQ(table.named_mode(1)->fps, 59.94F);
}
