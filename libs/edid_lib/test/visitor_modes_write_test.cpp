#include <gtest/gtest.h>

#include "edid_lib/cta_hdmi_vsdb.h"
#include "edid_lib/cta_video_data_block.h"
#include "edid_lib/edid.h"
#include "edid_lib/timing_lookup.h"
#include "edid_lib/visitor_modes.h"
#include "test_support/edid_builder.h"

using namespace edid_lib;
using test_support::data_block;
using test_support::edid_builder_t;
using keys_t = std::vector<std::string>;
using modes_t = std::vector<vid_resolution_t>;

namespace {

constexpr vid_timing_t full_hd = {148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5};
constexpr vid_timing_t svga = {40000, 800, 840, 968, 1056, 600, 601, 605, 628, 5};
constexpr vid_timing_t hd = {74250, 1280, 1390, 1430, 1650, 720, 725, 730, 750, 5};
const auto video_block = data_block(2, {97, 98});
const auto hdmi_block = data_block(3, {0x03, 0x0C, 0x00, 0x10, 0x00, 0x00, 0x00, 0x20, 0x00, 1 << 5, 3});

vid_resolution_t mode_of(std::string_view key, timing_type_t type = timing_type_t::undefined,
                         timing_location_t location = timing_location_t::undefined) {
  vid_resolution_t mode(key);
  mode.type = type;
  mode.location = location;
  return mode;
}

edid_t written(const edid_builder_t& builder, modes_t modes) {
  edid_t edid(builder.build());
  visitor_modes_t writer(std::move(modes));
  writer.write(&edid);
  return edid;
}

keys_t keys_of(const modes_t& modes) {
  keys_t keys;
  for (const vid_resolution_t& mode : modes) {
    keys.push_back(mode.key());
  }
  return keys;
}

keys_t video_keys(const edid_t& edid) {
  return keys_of(dynamic_cast<cta_video_data_block_t&>(*edid.cta()->find_block(2)).modes());
}

keys_t hdmi_keys(const edid_t& edid) {
  return keys_of(dynamic_cast<cta_hdmi_vsdb_t&>(*edid.cta()->find_block(3)).modes());
}

keys_t standard_keys(const edid_t& edid) { return keys_of(edid.base()->standard().modes(3, false)); }
keys_t established_keys(const edid_t& edid) { return keys_of(edid.base()->established().modes()); }
keys_t detailed_keys(const edid_t& edid) { return keys_of(edid.base()->detailed().modes()); }

/// A display with two detailed timings, a video and an HDMI block, and room for detailed timings in its extension.
edid_builder_t display() {
  return edid_builder_t()
      .detailed(0, full_hd)
      .detailed(1, svga)
      .standard(0, 0xD1, 0xC0)
      .byte(35, 0xFF)
      .cta(0, {video_block, hdmi_block}, {hd});
}

constexpr auto none = timing_type_t::undefined;

}  // namespace

TEST(VisitorModesWrite, AModeOfNoOriginGoesIntoEveryBlockThatHasAFormForIt) {
  const edid_t edid = written(display(), {mode_of("1920x1080@60")});
  EXPECT_EQ(detailed_keys(edid), (keys_t{"1920x1080@60"}));
  EXPECT_EQ(video_keys(edid), (keys_t{"1920x1080@60", "1920x1080@59.94"}));
  EXPECT_EQ(standard_keys(edid), (keys_t{"1920x1080@60"}));
  EXPECT_EQ(established_keys(edid), (keys_t{"640x480@60"}));
  EXPECT_TRUE(hdmi_keys(edid).empty());
  EXPECT_TRUE(edid.cta()->detailed_timings()->modes().empty());
}

TEST(VisitorModesWrite, AnEmptyListLeavesNothingBut640x480) {
  const edid_t edid = written(display(), {});
  EXPECT_TRUE(detailed_keys(edid).empty());
  EXPECT_TRUE(video_keys(edid).empty());
  EXPECT_TRUE(hdmi_keys(edid).empty());
  EXPECT_TRUE(standard_keys(edid).empty());
  EXPECT_EQ(established_keys(edid), (keys_t{"640x480@60"}));
  EXPECT_TRUE(edid.valid());
}

TEST(VisitorModesWrite, AModeGoesWhereItsLocationSays) {
  const edid_t edid = written(display(), {mode_of("1920x1080@60", none, timing_location_t::detailed_timing_descriptor),
                                          mode_of("1280x720@60", none, timing_location_t::cta_video_data_block),
                                          mode_of("3840x2160@30", none, timing_location_t::cta_hdmi_vsdb),
                                          mode_of("1280x1024@60", none, timing_location_t::standard_block),
                                          mode_of("800x600@60", none, timing_location_t::established_block)});
  EXPECT_EQ(detailed_keys(edid), (keys_t{"1920x1080@60"}));
  EXPECT_EQ(video_keys(edid), (keys_t{"1280x720@60", "1280x720@59.94"}));
  EXPECT_EQ(hdmi_keys(edid), (keys_t{"3840x2160@30"}));
  EXPECT_EQ(standard_keys(edid), (keys_t{"1280x1024@60"}));
  EXPECT_EQ(established_keys(edid), (keys_t{"640x480@60", "800x600@60"}));
}

TEST(VisitorModesWrite, TypesDecideAboutEveryBlockButTheDetailedTimings) {
  for (uint32_t type = 0; type <= 6; ++type) {
    const edid_t edid =
        written(display(), {mode_of("3840x2160@30", timing_type_t{type}), mode_of("800x600@60", timing_type_t{type})});
    EXPECT_EQ(detailed_keys(edid).size(), 2U) << type;
    EXPECT_EQ(video_keys(edid).empty(), type != 0 && type != 5) << type;
    EXPECT_EQ(hdmi_keys(edid).empty(), type != 0 && type != 5 && type != 6) << type;
    EXPECT_EQ(standard_keys(edid).empty(), type != 0 && type != 2 && type != 3 && type != 4) << type;
    EXPECT_EQ(established_keys(edid).size(), type < 2 ? 2U : 1U) << type;
  }
}

TEST(VisitorModesWrite, DetailedTimingsGoOnInTheExtension) {
  const edid_t edid = written(
      display(), {mode_of("1920x1080@60"), mode_of("1280x1024@60"), mode_of("1280x720@60"), mode_of("1024x768@60")});
  EXPECT_EQ(detailed_keys(edid), (keys_t{"1920x1080@60", "1280x1024@60"}));
  EXPECT_EQ(keys_of(edid.cta()->detailed_timings()->modes()), (keys_t{"1280x720@60", "1024x768@60"}));
}

TEST(VisitorModesWrite, AModeThatTheDetailedTimingsDoNotTakeIsSkipped) {
  const edid_t edid =
      written(display(), {mode_of("4096x2160@60"), mode_of("1280x720@60", none, timing_location_t::standard_block),
                          mode_of("1x1@60"), mode_of("800x600@60")});
  EXPECT_EQ(detailed_keys(edid), (keys_t{"800x600@60"}));
}

TEST(VisitorModesWrite, APlacedDetailedTimingIsToldAsNative) {
  EXPECT_EQ(written(display(), {mode_of("1920x1080@60")}).cta()->native_count(), 1);
  edid_builder_t two = display();
  two.byte(128 + 3, 0xF2);
  EXPECT_EQ(written(two, {mode_of("1920x1080@60")}).cta()->byte(3), 0xF3);
}

TEST(VisitorModesWrite, APlacedTimingWhoseClockIsTooLowToBeToldIsNativeToo) {
  vid_timing_t slow = full_hd;
  slow.pixel_clock_khz = 9;
  vid_resolution_t mode(slow);
  mode.location = timing_location_t::detailed_timing_descriptor;
  EXPECT_EQ(written(display(), {mode}).cta()->native_count(), 1);
}

TEST(VisitorModesWrite, WithoutAPlacedDetailedTimingTheNativeCountStays) {
  const vid_resolution_t in_video_block = mode_of("1920x1080@60", none, timing_location_t::cta_video_data_block);
  EXPECT_EQ(written(display(), {in_video_block}).cta()->native_count(), 0);
  edid_builder_t two = display();
  two.byte(128 + 3, 0x02);
  EXPECT_EQ(written(two, {in_video_block}).cta()->native_count(), 2);
}

TEST(VisitorModesWrite, AFullVideoBlockGoesOnInTheNext) {
  modes_t modes;
  for (uint32_t vic = 1; vic <= 34; ++vic) {
    modes.push_back(*cta_resolution(vic));
  }
  // Code 1 leads its row's own name; those of 20 and 39 and of the rates beyond the list are tried, too.
  const edid_t edid = written(edid_builder_t().cta(0, {video_block, data_block(4, {1, 2, 3}), video_block}), modes);
  const auto& blocks = edid.cta()->data_blocks();
  EXPECT_EQ(blocks[0]->size(), 32U);
  EXPECT_EQ(blocks[1]->size(), 4U);
  EXPECT_EQ(blocks[2]->size(), 4U);
  EXPECT_EQ(blocks[2]->byte(1), 32);
}

TEST(VisitorModesWrite, ASecondWriteHasNothingLeftForVideoBlocks) {
  edid_t first(display().build());
  edid_t second(display().build());
  visitor_modes_t writer({mode_of("1920x1080@60"), mode_of("1280x720@60")});
  writer.write(&first);
  writer.write(&second);
  EXPECT_EQ(dynamic_cast<cta_video_data_block_t&>(*first.cta()->find_block(2)).size(), 3U);
  EXPECT_EQ(dynamic_cast<cta_video_data_block_t&>(*second.cta()->find_block(2)).size(), 1U);
  EXPECT_EQ(detailed_keys(second), (keys_t{"1920x1080@60", "1280x720@60"}));
}

TEST(VisitorModesWrite, EveryHdmiBlockGetsAllItsModesUpToSeven) {
  const modes_t modes(9, mode_of("3840x2160@24", timing_type_t::hdmi, timing_location_t::cta_hdmi_vsdb));
  const edid_t edid = written(edid_builder_t().cta(0, {hdmi_block, hdmi_block}), modes);
  for (const auto& block : edid.cta()->data_blocks()) {
    EXPECT_EQ(dynamic_cast<cta_hdmi_vsdb_t&>(*block).hdmi_vics().size(), 7U);
  }
}

TEST(VisitorModesWrite, StandardTimingsBeyondEightAreDropped) {
  modes_t modes;
  for (const char* key : {"640x480@60", "800x600@60", "1024x768@60", "1280x960@60", "1280x1024@60", "1600x1200@60",
                          "1920x1440@60", "1680x1050@60", "1440x900@60"}) {
    modes.push_back(mode_of(key));
  }
  const edid_t edid = written(display(), modes);
  EXPECT_EQ(edid.base()->standard().count(), 8U);
  EXPECT_EQ(standard_keys(edid).back(), "1680x1050@60");
}

TEST(VisitorModesWrite, WhatWasReadIsWrittenBack) {
  edid_t edid(display().build());
  visitor_modes_t reader;
  reader.read(&edid);
  const keys_t before = keys_of(reader.modes());
  visitor_modes_t writer(reader.take_modes());
  writer.write(&edid);
  edid_t again(edid.assemble());
  reader.read(&again);
  // The native count of 0 became 1, so the first video mode comes behind the first detailed timing now.
  keys_t after = keys_of(reader.modes());
  std::swap(after[0], after[1]);
  EXPECT_EQ(after, before);
  EXPECT_TRUE(again.valid());
}

TEST(VisitorModesWrite, NoEdidAndNoPartsAreBorne) {
  visitor_modes_t writer({mode_of("1920x1080@60")});
  writer.write(nullptr);
  edid_t empty;
  writer.write(&empty);
  EXPECT_EQ(writer.modes().size(), 1U);
}

TEST(VisitorModesWrite, AReadAfterAWriteStartsAnew) {
  edid_t edid(display().build());
  visitor_modes_t visitor({mode_of("1920x1080@60")});
  visitor.write(&edid);
  visitor.read(&edid);
  EXPECT_EQ(keys_of(visitor.modes()),
            (keys_t{"1920x1080@60", "1920x1080@60", "1920x1080@59.94", "1920x1080@60", "640x480@60"}));
}
