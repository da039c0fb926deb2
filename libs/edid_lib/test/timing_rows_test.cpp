#include "edid_lib/tables/timing_rows.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <span>
#include <string_view>

using edid_lib::timing_row_t;
using edid_lib::vid_timing_t;
using edid_lib::tables::cta_rows;
using edid_lib::tables::dmt_rows;
using edid_lib::tables::established_rows;
using edid_lib::tables::hdmi_rows;

namespace {

using rows_t = std::span<const timing_row_t>;

struct named_timing_t {
  std::string_view key;
  vid_timing_t timing;
};

// clang-format off
constexpr named_timing_t established[] = {
    {"800x600@60", {40000, 800, 840, 968, 1056, 600, 601, 605, 628, 5}},
    {"800x600@56", {36000, 800, 824, 896, 1024, 600, 601, 603, 625, 5}},
    {"640x480@75", {31500, 640, 656, 720, 840, 480, 481, 484, 500, 10}},
    {"640x480@72", {31500, 640, 664, 704, 832, 480, 489, 492, 520, 10}},
    {"640x480@67", {30240, 640, 704, 768, 864, 480, 483, 486, 525, 10}},
    {"640x480@60", {25175, 640, 656, 752, 800, 480, 490, 492, 525, 10}},
    {"720x400@88", {35500, 720, 738, 846, 900, 400, 421, 423, 449, 10}},
    {"720x400@70", {28320, 720, 738, 846, 900, 400, 412, 414, 449, 6}},
    {"1280x1024@75", {135000, 1280, 1296, 1440, 1688, 1024, 1025, 1028, 1066, 5}},
    {"1024x768@75", {78750, 1024, 1040, 1136, 1312, 768, 769, 772, 800, 5}},
    {"1024x768@70", {75000, 1024, 1048, 1184, 1328, 768, 771, 777, 806, 10}},
    {"1024x768@60", {65000, 1024, 1048, 1184, 1344, 768, 771, 777, 806, 10}},
    {"1024x768i@43", {44900, 1024, 1032, 1208, 1264, 768, 768, 776, 817, 21}},
    {"832x624@75", {57284, 832, 864, 928, 1152, 624, 625, 628, 667, 10}},
    {"800x600@75", {49500, 800, 816, 896, 1056, 600, 601, 604, 625, 5}},
    {"800x600@72", {50000, 800, 856, 976, 1040, 600, 637, 643, 666, 5}},
    {"1152x864@75", {108000, 1152, 1216, 1344, 1600, 864, 865, 868, 900, 5}},
};

constexpr named_timing_t hdmi[] = {
    {"3840x2160@30", {297000, 3840, 4016, 4104, 4400, 2160, 2168, 2178, 2250, 5}},
    {"3840x2160@25", {297000, 3840, 4896, 4984, 5280, 2160, 2168, 2178, 2250, 5}},
    {"3840x2160@24", {297000, 3840, 5116, 5204, 5500, 2160, 2168, 2178, 2250, 5}},
    {"4096x2160@24", {297000, 4096, 5116, 5204, 5500, 2160, 2168, 2178, 2250, 5}},
};

/// The DMT rows that are fixed, whatever an edition of the standard says.
constexpr named_timing_t fixed_dmt_rows[] = {
    {"1024x768i@43", {44900, 1024, 1032, 1208, 1264, 768, 768, 772, 817, 21}},
    {"1280x720@60", {74250, 1280, 1390, 1430, 1650, 720, 725, 730, 750, 5}},
    {"1366x768@60", {85500, 1366, 1436, 1579, 1792, 768, 771, 774, 798, 5}},
    {"1366x768@60 RB", {72000, 1366, 1380, 1436, 1500, 768, 769, 772, 800, 5}},
    {"1600x900@60 RB", {108000, 1600, 1624, 1704, 1800, 900, 901, 904, 1000, 5}},
    {"1920x1080@60", {148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 10}},
    {"2048x1152@60 RB", {162000, 2048, 2074, 2154, 2250, 1152, 1153, 1156, 1200, 5}},
    {"4096x2160@60", {556744, 4096, 4104, 4136, 4176, 2160, 2208, 2216, 2222, 9}},
    {"4096x2160@59.94", {556188, 4096, 4104, 4136, 4176, 2160, 2208, 2216, 2222, 9}},
};
// clang-format on

constexpr std::string_view dmt_keys[] = {
    "640x350@85",       "640x400@85",       "720x400@85",       "640x480@60",       "640x480@72",
    "640x480@75",       "640x480@85",       "800x600@56",       "800x600@60",       "800x600@72",
    "800x600@75",       "800x600@85",       "800x600@120 RB",   "848x480@60",       "1024x768i@43",
    "1024x768@60",      "1024x768@70",      "1024x768@75",      "1024x768@85",      "1024x768@120 RB",
    "1152x864@75",      "1280x720@60",      "1280x768@60 RB",   "1280x768@60",      "1280x768@75",
    "1280x768@85",      "1280x768@120 RB",  "1280x800@60 RB",   "1280x800@60",      "1280x800@75",
    "1280x800@85",      "1280x800@120 RB",  "1280x960@60",      "1280x960@85",      "1280x960@120 RB",
    "1280x1024@60",     "1280x1024@75",     "1280x1024@85",     "1280x1024@120 RB", "1360x768@60",
    "1360x768@120 RB",  "1366x768@60",      "1366x768@60 RB",   "1400x1050@60 RB",  "1400x1050@60",
    "1400x1050@75",     "1400x1050@85",     "1400x1050@120 RB", "1440x900@60 RB",   "1440x900@60",
    "1440x900@75",      "1440x900@85",      "1440x900@120 RB",  "1600x900@60 RB",   "1600x1200@60",
    "1600x1200@65",     "1600x1200@70",     "1600x1200@75",     "1600x1200@85",     "1600x1200@120 RB",
    "1680x1050@60 RB",  "1680x1050@60",     "1680x1050@75",     "1680x1050@85",     "1680x1050@120 RB",
    "1792x1344@60",     "1792x1344@75",     "1792x1344@120 RB", "1856x1392@60",     "1856x1392@75",
    "1856x1392@120 RB", "1920x1080@60",     "1920x1200@60 RB",  "1920x1200@60",     "1920x1200@75",
    "1920x1200@85",     "1920x1200@120 RB", "1920x1440@60",     "1920x1440@75",     "1920x1440@120 RB",
    "2048x1152@60 RB",  "2560x1600@60 RB",  "2560x1600@60",     "2560x1600@75",     "2560x1600@85",
    "2560x1600@120 RB", "4096x2160@60",     "4096x2160@59.94"};

constexpr std::string_view cta_keys[] = {
    "640x480@59.94",       "720x480@59.94 8:9",   "720x480@59.94 32:27",  "1280x720@60",
    "1920x1080i@60",       "720x480i@59.94 8:9",  "720x480i@59.94 32:27", "720x240@59.94 4:9",
    "720x240@59.94 16:27", "2880x480i@59.94 2:9", "2880x480i@59.94 8:27", "2880x240@59.94 1:9",
    "2880x240@59.94 4:27", "1440x480@59.94 4:9",  "1440x480@59.94 16:27", "1920x1080@60",
    "720x576@50 16:15",    "720x576@50 64:45",    "1280x720@50",          "1920x1080i@50",
    "720x576i@50 16:15",   "720x576i@50 64:45",   "720x288@50 8:15",      "720x288@50 32:45",
    "2880x576i@50 4:15",   "2880x576i@50 16:45",  "2880x288@50 2:15",     "2880x288@50 8:45",
    "1440x576@50 8:15",    "1440x576@50 32:45",   "1920x1080@50",         "1920x1080@24",
    "1920x1080@25",        "1920x1080@30",        "2880x480@59.94 2:9",   "2880x480@59.94 8:27",
    "2880x576@50 4:15",    "2880x576@50 16:45",   "1920x1080i@50 RB",     "1920x1080i@100",
    "1280x720@100",        "720x576@100 16:15",   "720x576@100 64:45",    "720x576i@100 16:15",
    "720x576i@100 64:45",  "1920x1080i@120",      "1280x720@120",         "720x480@120 8:9",
    "720x480@120 32:27",   "720x480i@120 8:9",    "720x480i@120 32:27",   "720x576@200 16:15",
    "720x576@200 64:45",   "720x576i@200 16:15",  "720x576i@200 64:45",   "720x480@240 8:9",
    "720x480@240 32:27",   "720x480i@240 8:9",    "720x480i@240 32:27",   "1280x720@24",
    "1280x720@25",         "1280x720@30",         "1920x1080@120",        "1920x1080@100",
    "1280x720@24 4:3",     "1280x720@25 4:3",     "1280x720@30 4:3",      "1280x720@50 4:3",
    "1280x720@60 4:3",     "1280x720@100 4:3",    "1280x720@120 4:3",     "1920x1080@24 4:3",
    "1920x1080@25 4:3",    "1920x1080@30 4:3",    "1920x1080@50 4:3",     "1920x1080@60 4:3",
    "1920x1080@100 4:3",   "1920x1080@120 4:3",   "1680x720@24 64:63",    "1680x720@25 64:63",
    "1680x720@30 64:63",   "1680x720@50 64:63",   "1680x720@60 64:63",    "1680x720@100 64:63",
    "1680x720@120 64:63",  "2560x1080@24",        "2560x1080@25",         "2560x1080@30",
    "2560x1080@50",        "2560x1080@60",        "2560x1080@100",        "2560x1080@120",
    "3840x2160@24",        "3840x2160@25",        "3840x2160@30",         "3840x2160@50",
    "3840x2160@60",        "4096x2160@24",        "4096x2160@25",         "4096x2160@30",
    "4096x2160@50",        "4096x2160@60",        "3840x2160@24 4:3",     "3840x2160@25 4:3",
    "3840x2160@30 4:3",    "3840x2160@50 4:3",    "3840x2160@60 4:3"};

const timing_row_t& row(rows_t rows, std::string_view key) {
  const auto found = std::find_if(rows.begin(), rows.end(), [&](const timing_row_t& one) { return one.key == key; });
  EXPECT_NE(found, rows.end()) << key;
  return found != rows.end() ? *found : rows.front();
}

void expect_keys(rows_t rows, std::span<const std::string_view> keys, uint32_t first_number) {
  ASSERT_EQ(rows.size(), keys.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(rows[i].key, keys[i]);
    EXPECT_EQ(rows[i].number, first_number + i) << keys[i];
  }
}

void expect_rows(rows_t rows, std::span<const named_timing_t> wanted, uint32_t first_number) {
  ASSERT_EQ(rows.size(), wanted.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    EXPECT_EQ(rows[i].key, wanted[i].key);
    EXPECT_EQ(rows[i].number, first_number + i) << wanted[i].key;
    EXPECT_EQ(rows[i].timing, wanted[i].timing) << wanted[i].key;
  }
}

/// FNV-1a over all numbers of all timings, in the order of rows and fields.
uint32_t fingerprint(rows_t rows) {
  uint32_t hash = 2166136261U;
  for (const timing_row_t& one : rows) {
    const vid_timing_t& t = one.timing;
    for (const uint32_t field : {t.pixel_clock_khz, t.h_active, t.h_sync_start, t.h_sync_end, t.h_total, t.v_active,
                                 t.v_sync_start, t.v_sync_end, t.v_total, t.flags}) {
      for (int shift = 0; shift < 32; shift += 8) {
        hash = (hash ^ (field >> shift & 0xFF)) * 16777619U;
      }
    }
  }
  return hash;
}

}  // namespace

TEST(TimingRows, EstablishedRowsAreTheseInTheOrderOfTheirBits) { expect_rows(established_rows(), established, 0); }

TEST(TimingRows, HdmiRowsAreTheseInTheOrderOfTheirCodes) { expect_rows(hdmi_rows(), hdmi, 1); }

TEST(TimingRows, DmtRowsHaveTheseKeysInTheOrderOfTheStandard) { expect_keys(dmt_rows(), dmt_keys, 0); }

TEST(TimingRows, CtaRowsHaveTheseKeysInTheOrderOfTheirCodes) { expect_keys(cta_rows(), cta_keys, 1); }

TEST(TimingRows, DmtRowsThatAreFixedStay) {
  for (const named_timing_t& wanted : fixed_dmt_rows) {
    EXPECT_EQ(row(dmt_rows(), wanted.key).timing, wanted.timing) << wanted.key;
  }
}

TEST(TimingRows, CtaRowsThatAreFixedStay) {
  EXPECT_EQ(row(cta_rows(), "1920x1080i@50 RB").timing,
            (vid_timing_t{72000, 1920, 1952, 2120, 2304, 1080, 1126, 1136, 1250, 25}));
  EXPECT_EQ(row(cta_rows(), "1920x1080@100").timing.v_sync_end, 1094U);
  EXPECT_EQ(row(cta_rows(), "1920x1080@100 4:3").timing.v_sync_end, 1089U);
}

TEST(TimingRows, OneNameMayStandForTwoTimings) {
  EXPECT_EQ(row(established_rows(), "1024x768i@43").timing.v_sync_end, 776U);
  EXPECT_EQ(row(dmt_rows(), "1024x768i@43").timing.v_sync_end, 772U);
  EXPECT_EQ(row(dmt_rows(), "1920x1080@60").timing.flags, 10U);
  EXPECT_EQ(row(cta_rows(), "1920x1080@60").timing.flags, 5U);
}

// The numbers of a row change only on purpose: then the new fingerprint belongs here.
TEST(TimingRows, NoNumberChangesUnseen) {
  EXPECT_EQ(fingerprint(dmt_rows()), 2747469660U);
  EXPECT_EQ(fingerprint(cta_rows()), 3426397256U);
}
