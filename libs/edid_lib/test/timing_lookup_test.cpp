#include "edid_lib/timing_lookup.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <vector>

#include "edid_lib/timing_tables.h"

using namespace edid_lib;

namespace {

constexpr vid_timing_t full_hd = {148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5};
constexpr vid_timing_t full_hd_dmt = {148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 10};
constexpr vid_timing_t full_hd_interlaced = {74250, 1920, 2008, 2052, 2200, 1080, 1084, 1094, 1125, 21};

/// `mode` is what the key of `row` names, with the timing of the row. DMT keys name no aspect but 1:1.
void expect_named(const vid_resolution_t& mode, const timing_row_t& row, timing_type_t type) {
  const vid_resolution_t named(row.key);
  EXPECT_EQ(mode.width, named.width) << row.key;
  EXPECT_EQ(mode.height, named.height) << row.key;
  EXPECT_EQ(mode.fps, named.fps) << row.key;
  EXPECT_EQ(mode.interlaced, named.interlaced) << row.key;
  EXPECT_EQ(mode.reduced_blanking, named.reduced_blanking) << row.key;
  EXPECT_EQ(mode.pixel_aspect_x, type == timing_type_t::dmt ? 1 : named.pixel_aspect_x) << row.key;
  EXPECT_EQ(mode.pixel_aspect_y, named.pixel_aspect_y) << row.key;
  EXPECT_EQ(mode.timing, row.timing) << row.key;
  EXPECT_EQ(mode.type, type) << row.key;
}

/// `modes` are those of `table`, in the order of its keys.
void expect_all_of(const timing_table_t& table, const std::vector<vid_resolution_t>& modes, timing_type_t type) {
  const auto rows = table.by_key();
  ASSERT_EQ(modes.size(), rows.size());
  for (std::size_t i = 0; i < rows.size(); ++i) {
    expect_named(modes[i], *rows[i], type);
  }
}

}  // namespace

TEST(TimingLookup, AllModesOfATableComeInTheOrderOfItsKeysAsTheseNameThem) {
  expect_all_of(established_timings(), all_established(), timing_type_t::established);
  expect_all_of(dmt_timings(), all_dmt(), timing_type_t::dmt);
  expect_all_of(cta_timings(), all_cta(), timing_type_t::cta);
  expect_all_of(hdmi_timings(), all_hdmi(), timing_type_t::hdmi);
}

TEST(TimingLookup, CtaModesAreFoundByKey) {
  const vid_resolution_t mode("1920x1080@60");
  EXPECT_TRUE(is_cta(mode));
  EXPECT_EQ(cta_vic(mode), 16U);
  EXPECT_EQ(cta_timing(mode), full_hd);
  EXPECT_EQ(cta_vic(vid_resolution_t("720x480@59.94 32:27")), 3U);
}

TEST(TimingLookup, WhatIsNoCtaModeHasNoTimingAndNoCode) {
  const vid_resolution_t mode("1921x1080@60");
  EXPECT_FALSE(is_cta(mode));
  EXPECT_EQ(cta_vic(mode), no_timing_number);
  EXPECT_FALSE(cta_timing(mode).known());
}

TEST(TimingLookup, CtaModesAreFoundByTheirOtherRate) {
  EXPECT_EQ(cta_vic(vid_resolution_t("640x480@60")), 1U);
  EXPECT_EQ(cta_vic(vid_resolution_t("640x480@59.94")), 1U);
}

TEST(TimingLookup, FractionalRatesHaveNoOtherRate) { EXPECT_FALSE(is_cta(vid_resolution_t("1920x1080@59.94"))); }

TEST(TimingLookup, CtaModeWithItsOwnTimingIsFoundOnlyByThatTiming) {
  EXPECT_EQ(cta_vic(vid_resolution_t(full_hd)), 16U);
  EXPECT_FALSE(is_cta(vid_resolution_t(full_hd_dmt)));
}

TEST(TimingLookup, InterlacedTimingIsNoCtaModeBecauseItsRateIsThatOfItsFrames) {
  const vid_resolution_t mode(full_hd_interlaced);
  EXPECT_EQ(mode.key(), "1920x1080i@30");
  EXPECT_FALSE(is_cta(mode));
  EXPECT_EQ(cta_timing(vid_resolution_t("1920x1080i@60")), full_hd_interlaced);
}

TEST(TimingLookup, CtaTimingIsFoundAtItsOtherRateIfTheSlowerClockIsThatOfTheRow) {
  vid_timing_t vga = cta_resolution(1)->timing;
  vga.pixel_clock_khz = 25201;
  EXPECT_EQ(cta_vic(vid_resolution_t(vga)), 1U);
  vga.pixel_clock_khz = 25200;
  EXPECT_FALSE(is_cta(vid_resolution_t(vga)));
}

TEST(TimingLookup, DmtModesAreFoundWithAndWithoutReducedBlanking) {
  EXPECT_EQ(dmt_timing(vid_resolution_t("1280x800@60")).pixel_clock_khz, 83500U);
  EXPECT_EQ(dmt_timing(vid_resolution_t("2048x1152@60")).pixel_clock_khz, 162000U);
  vid_resolution_t reduced("1280x800@60");
  reduced.reduced_blanking = true;
  EXPECT_EQ(dmt_timing(reduced).pixel_clock_khz, 71000U);
  EXPECT_FALSE(is_dmt(vid_resolution_t("1280x801@60")));
}

TEST(TimingLookup, DmtRowThatContradictsTheTimingEndsTheSearch) {
  EXPECT_TRUE(is_dmt(vid_resolution_t(full_hd_dmt)));
  EXPECT_FALSE(is_dmt(vid_resolution_t(full_hd)));
  // The timing of the reduced row, under the name of the row with full blanking.
  EXPECT_FALSE(is_dmt(vid_resolution_t(vid_timing_t{71000, 1280, 1328, 1360, 1440, 800, 803, 809, 823, 9})));
}

TEST(TimingLookup, DmtModeThatIsFoundOnlyWithReducedBlankingHasToHaveThatTiming) {
  vid_timing_t timing = {162000, 2048, 2074, 2154, 2250, 1152, 1153, 1156, 1200, 5};
  EXPECT_EQ(vid_resolution_t(timing).key(), "2048x1152@60");
  EXPECT_TRUE(is_dmt(vid_resolution_t(timing)));
  ++timing.v_sync_end;
  EXPECT_EQ(vid_resolution_t(timing).key(), "2048x1152@60");
  EXPECT_FALSE(is_dmt(vid_resolution_t(timing)));
}

TEST(TimingLookup, DmtTimingForAnotherTypeIsUnknown) {
  const vid_resolution_t mode("1280x800@60");
  EXPECT_EQ(dmt_timing_for(mode, timing_type_t::dmt), dmt_timing(mode));
  EXPECT_FALSE(dmt_timing_for(mode, timing_type_t::cta).known());
}

TEST(TimingLookup, ADmtModeHasAWholeRateInItsKey) {
  vid_resolution_t mode("4096x2160@59.94");
  EXPECT_EQ(dmt_timing(mode).pixel_clock_khz, 556188U);
  mode.type = timing_type_t::dmt;
  EXPECT_EQ(dmt_timing(mode).pixel_clock_khz, 556744U);
}

TEST(TimingLookup, EstablishedAndHdmiModesAreFoundWhateverTheirTiming) {
  EXPECT_EQ(established_index(vid_resolution_t("640x480@60")), 5U);
  EXPECT_EQ(established_timing(vid_resolution_t("1024x768i@43")).v_sync_end, 776U);
  EXPECT_EQ(hdmi_vic(vid_resolution_t("3840x2160@24")), 3U);
  EXPECT_EQ(hdmi_timing(vid_resolution_t("3840x2160@24")).h_sync_start, 5116U);
  vid_resolution_t odd("3840x2160@30");
  odd.timing.pixel_clock_khz = 1;
  EXPECT_TRUE(is_hdmi(odd));
  vid_resolution_t old("1024x768@70");
  old.timing.pixel_clock_khz = 1;
  EXPECT_TRUE(is_established(old));
}

TEST(TimingLookup, UnknownEstablishedAndHdmiModesHaveNoNumber) {
  const vid_resolution_t mode("1x1@60");
  EXPECT_EQ(established_index(mode), no_timing_number);
  EXPECT_EQ(hdmi_vic(mode), no_timing_number);
  EXPECT_FALSE(is_established(mode));
  EXPECT_FALSE(is_hdmi(mode));
  EXPECT_FALSE(established_timing(mode).known());
  EXPECT_FALSE(hdmi_timing(mode).known());
}

TEST(TimingLookup, ClassifyTakesTheFirstFamilyThatKnowsTheMode) {
  EXPECT_EQ(classify(vid_resolution_t("1920x1080@60")), timing_type_t::cta);
  EXPECT_EQ(classify(vid_resolution_t(full_hd_dmt)), timing_type_t::dmt);
  EXPECT_EQ(classify(vid_resolution_t("1280x1024@60")), timing_type_t::dmt);
  EXPECT_EQ(classify(vid_resolution_t("832x624@75")), timing_type_t::established);
  EXPECT_EQ(classify(vid_resolution_t("1x1@60")), timing_type_t::undefined);
  vid_resolution_t odd("3840x2160@30");
  odd.timing.pixel_clock_khz = 1;
  EXPECT_EQ(classify(odd), timing_type_t::hdmi);
}

TEST(TimingLookup, CtaComesBeforeHdmi) {
  const vid_resolution_t mode("3840x2160@24");
  EXPECT_TRUE(is_hdmi(mode));
  EXPECT_EQ(classify(mode), timing_type_t::cta);
  EXPECT_EQ(resolve_timing(mode).type, timing_type_t::cta);
}

TEST(TimingLookup, ResolveKeepsTheTimingThatAModeHas) {
  vid_resolution_t mode(full_hd);
  mode.type = timing_type_t::gft;
  const resolved_timing_t resolved = resolve_timing(mode);
  EXPECT_EQ(resolved.timing, full_hd);
  EXPECT_EQ(resolved.type, timing_type_t::gft);
}

TEST(TimingLookup, ResolveFindsTheTimingThatAModeLacks) {
  EXPECT_EQ(resolve_timing(vid_resolution_t("1920x1080@60")).timing, full_hd);
  EXPECT_EQ(resolve_timing(vid_resolution_t("1280x1024@60")).type, timing_type_t::dmt);
  EXPECT_FALSE(resolve_timing(vid_resolution_t("1x1@60")).timing.known());
  EXPECT_EQ(resolve_timing(vid_resolution_t("1x1@60")).type, timing_type_t::undefined);
}

TEST(TimingLookup, CodesOfCtaGiveTheirModes) {
  const auto mode = cta_resolution(3);
  ASSERT_TRUE(mode.has_value());
  EXPECT_EQ(mode->key(), "720x480@59.94 32:27");
  EXPECT_EQ(mode->timing.pixel_clock_khz, 27000U);
  EXPECT_EQ(mode->type, timing_type_t::cta);
  EXPECT_EQ(mode->location, timing_location_t::undefined);
  EXPECT_EQ(mode->fps, 59.94F);
}

TEST(TimingLookup, CodesOutsideTheCtaTableGiveNoMode) {
  for (const uint32_t vic : {0U, 108U, 127U, 253U}) {
    EXPECT_FALSE(cta_resolution(vic).has_value()) << vic;
  }
  EXPECT_TRUE(cta_resolution(107).has_value());
}

TEST(TimingLookup, CtaModesAt100AreNotFoundAgain) {
  const auto mode = cta_resolution(41);
  ASSERT_TRUE(mode.has_value());
  EXPECT_EQ(mode->to_string(), "1280x720p88");
  EXPECT_FALSE(is_cta(*mode));
}

TEST(TimingLookup, CodesOfHdmiGiveTheirModes) {
  const vid_resolution_t mode = hdmi_resolution(4);
  EXPECT_EQ(mode.key(), "4096x2160@24");
  EXPECT_EQ(mode.type, timing_type_t::hdmi);
  EXPECT_EQ(mode.location, timing_location_t::cta_hdmi_vsdb);
}

TEST(TimingLookup, NumbersOutsideTheHdmiTableGiveAnEmptyMode) {
  for (const int32_t vic : {-1, 0, 5}) {
    EXPECT_EQ(hdmi_resolution(vic).width, 0) << vic;
    EXPECT_FALSE(hdmi_resolution(vic).timing.known()) << vic;
  }
}
