#include "edid_lib/visitor_modes.h"

#include <gtest/gtest.h>

#include "edid_lib/edid.h"
#include "test_support/edid_builder.h"

using edid_lib::edid_t;
using edid_lib::vid_resolution_t;
using edid_lib::vid_timing_t;
using edid_lib::visitor_modes_t;
using test_support::data_block;
using test_support::edid_builder_t;
using texts_t = std::vector<std::string>;

namespace {

constexpr vid_timing_t full_hd = {148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5};
constexpr vid_timing_t svga = {40000, 800, 840, 968, 1056, 600, 601, 605, 628, 5};
constexpr vid_timing_t hd = {74250, 1280, 1390, 1430, 1650, 720, 725, 730, 750, 5};
const auto hdmi_block = data_block(3, {0x03, 0x0C, 0x00, 0x10, 0x00, 0x00, 0x00, 0x20, 0x00, 1 << 5, 3});

texts_t texts_of(const std::vector<vid_resolution_t>& modes) {
  texts_t texts;
  for (const vid_resolution_t& mode : modes) {
    texts.push_back(mode.list_text());
  }
  return texts;
}

texts_t read(const edid_builder_t& builder) {
  edid_t edid(builder.build());
  visitor_modes_t visitor;
  visitor.read(&edid);
  return texts_of(visitor.modes());
}

}  // namespace

TEST(VisitorModes, WithoutExtensionTheListIsDetailedStandardEstablished) {
  EXPECT_EQ(read(edid_builder_t().detailed(0, full_hd).detailed(1, svga).standard(0, 0x61, 0x40)),
            (texts_t{"1920x1080p60", "800x600p60", "1024x768p60", "640x480p60"}));
}

TEST(VisitorModes, WithoutNativeTimingTheFirstVideoModeLeadsTheList) {
  EXPECT_EQ(read(edid_builder_t().detailed(0, full_hd).cta(0, {data_block(2, {19, 31})})),
            (texts_t{"1280x720p50 (preferred)", "1920x1080p60", "1920x1080p50", "640x480p60"}));
}

TEST(VisitorModes, WithANativeTimingTheFirstVideoModeComesBehindIt) {
  EXPECT_EQ(read(edid_builder_t().detailed(0, full_hd).cta(1, {data_block(2, {19, 31})})),
            (texts_t{"1920x1080p60 (preferred)", "1280x720p50 (preferred)", "1920x1080p50", "640x480p60"}));
}

TEST(VisitorModes, OnlyOneModeOfTheFirstVideoCodeIsPlacedEarly) {
  EXPECT_EQ(read(edid_builder_t().detailed(0, full_hd).cta(1, {data_block(2, {4, 31})})),
            (texts_t{"1920x1080p60 (preferred)", "1280x720p60 (preferred)", "1280x720p59.94 (preferred)",
                     "1920x1080p50", "640x480p60"}));
}

TEST(VisitorModes, AsManyTimingsOfTheBaseBlockArePreferredAsAreNative) {
  EXPECT_EQ(read(edid_builder_t().detailed(0, full_hd).detailed(1, svga).cta(1, {}, {hd})),
            (texts_t{"1920x1080p60 (preferred)", "800x600p60", "1280x720p60", "640x480p60"}));
  EXPECT_EQ(read(edid_builder_t().detailed(0, full_hd).detailed(1, svga).cta(3, {}, {hd})),
            (texts_t{"1920x1080p60 (preferred)", "800x600p60 (preferred)", "1280x720p60", "640x480p60"}));
}

TEST(VisitorModes, HdmiModesComeInTheOrderOfTheBlocks) {
  const auto video = data_block(2, {31, 19});
  EXPECT_EQ(read(edid_builder_t().detailed(0, full_hd).cta(1, {video, hdmi_block}, {hd})),
            (texts_t{"1920x1080p60 (preferred)", "1920x1080p50 (preferred)", "1280x720p60", "1280x720p50",
                     "3840x2160p24", "640x480p60"}));
  EXPECT_EQ(read(edid_builder_t().detailed(0, full_hd).cta(1, {hdmi_block, video}, {hd})),
            (texts_t{"1920x1080p60 (preferred)", "1920x1080p50 (preferred)", "1280x720p60", "3840x2160p24",
                     "1280x720p50", "640x480p60"}));
}

TEST(VisitorModes, EachOfSeveralVideoBlocksPlacesItsFirstMode) {
  EXPECT_EQ(read(edid_builder_t().detailed(0, full_hd).cta(1, {data_block(2, {31, 19}), data_block(2, {33})})),
            (texts_t{"1920x1080p60 (preferred)", "1920x1080p25 (preferred)", "1920x1080p50 (preferred)", "1280x720p50",
                     "640x480p60"}));
}

TEST(VisitorModes, WithoutDetailedTimingsTheVideoModesAreJustAppended) {
  EXPECT_EQ(read(edid_builder_t().cta(1, {data_block(2, {19, 31})})),
            (texts_t{"1280x720p50 (preferred)", "1920x1080p50", "640x480p60"}));
}

TEST(VisitorModes, AVideoBlockWithoutModesChangesNothing) {
  EXPECT_EQ(read(edid_builder_t().detailed(0, full_hd).cta(1, {data_block(2, {})})),
            (texts_t{"1920x1080p60 (preferred)", "640x480p60"}));
}

TEST(VisitorModes, DuplicatesStay) {
  EXPECT_EQ(read(edid_builder_t().detailed(0, full_hd).standard(0, 0xD1, 0xC0).cta(1, {data_block(2, {16})})),
            (texts_t{"1920x1080p60 (preferred)", "1920x1080p60 (preferred)", "1920x1080p59.94 (preferred)",
                     "1920x1080p60", "640x480p60"}));
}

TEST(VisitorModes, RevisionAndReducedBlankingOfTheBaseBlockRuleItsStandardTimings) {
  EXPECT_EQ(read(edid_builder_t().standard(0, 0x81, 0x00)), (texts_t{"1280x800p60 RB", "640x480p60"}));
  EXPECT_EQ(read(edid_builder_t().byte(19, 2).standard(0, 0x81, 0x00)), (texts_t{"640x480p60"}));
}

TEST(VisitorModes, StandardTimingsWithoutABaseBlockAreOfRevisionThreeWithReducedBlanking) {
  edid_lib::std_timings_block_t block(std::vector<uint8_t>{0x81, 0x00});
  visitor_modes_t visitor;
  visitor.visit(&block, false);
  EXPECT_EQ(texts_of(visitor.modes()), (texts_t{"1280x800p60 RB"}));
}

TEST(VisitorModes, ReadTwiceGivesTheSame) {
  edid_t edid(edid_builder_t().detailed(0, full_hd).cta(0, {data_block(2, {16}), hdmi_block}).build());
  visitor_modes_t visitor;
  visitor.read(&edid);
  const texts_t first = texts_of(visitor.modes());
  visitor.read(&edid);
  EXPECT_EQ(texts_of(visitor.modes()), first);
}

TEST(VisitorModes, ReadOfNothingIsEmpty) {
  edid_t edid(edid_builder_t().build());
  visitor_modes_t visitor;
  visitor.read(&edid);
  EXPECT_EQ(visitor.take_modes().size(), 1U);
  EXPECT_TRUE(visitor.modes().empty());
  visitor.read(&edid);
  visitor.read(nullptr);
  EXPECT_TRUE(visitor.modes().empty());
}

TEST(VisitorModes, VisitsOfNoBlockDoNothing) {
  visitor_modes_t visitor;
  for (const bool forward : {true, false}) {
    visitor.visit(static_cast<edid_lib::edid_base_t*>(nullptr), forward);
    visitor.visit(static_cast<edid_lib::est_timings_block_t*>(nullptr), forward);
    visitor.visit(static_cast<edid_lib::std_timings_block_t*>(nullptr), forward);
    visitor.visit(static_cast<edid_lib::det_timings_block_t*>(nullptr), forward);
    visitor.visit(static_cast<edid_lib::cta_extension_t*>(nullptr), forward);
    visitor.visit(static_cast<edid_lib::cta_video_data_block_t*>(nullptr), forward);
    visitor.visit(static_cast<edid_lib::cta_hdmi_vsdb_t*>(nullptr), forward);
  }
  EXPECT_TRUE(visitor.modes().empty());
}
