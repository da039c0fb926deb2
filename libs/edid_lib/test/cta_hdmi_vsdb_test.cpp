#include "edid_lib/cta_hdmi_vsdb.h"

#include <gtest/gtest.h>

#include "test_support/edid_builder.h"

using edid_lib::cta_hdmi_vsdb_t;
using edid_lib::vid_resolution_t;
using test_support::data_block;

namespace {

constexpr uint8_t video = 0x20;
constexpr uint8_t latency = 0x80;
constexpr uint8_t interlaced_latency = 0x40;

/// An HDMI vendor block with `flags` in byte 8 and `rest` from byte 9 on.
cta_hdmi_vsdb_t hdmi(uint8_t flags, std::initializer_list<uint8_t> rest) {
  auto bytes = data_block(3, {0x03, 0x0C, 0x00, 0x10, 0x00, 0x00, 0x00, flags});
  bytes.insert(bytes.end(), rest);
  bytes[0] = static_cast<uint8_t>(3 << 5 | (bytes.size() - 1));
  const cta_hdmi_vsdb_t block(bytes);
  return block;
}

std::vector<std::string> keys_of(const cta_hdmi_vsdb_t& block) {
  std::vector<std::string> keys;
  for (const auto& mode : block.modes()) {
    keys.push_back(mode.key());
  }
  return keys;
}

std::vector<uint8_t> from_8(const cta_hdmi_vsdb_t& block) { return {block.bytes().begin() + 8, block.bytes().end()}; }

using bytes_t = std::vector<uint8_t>;
using keys_t = std::vector<std::string>;

}  // namespace

TEST(CtaHdmiVsdb, HdmiVicsGiveTheirModes) {
  EXPECT_EQ(keys_of(hdmi(video, {0x00, 4 << 5, 1, 2, 3, 4})),
            (keys_t{"3840x2160@30", "3840x2160@25", "3840x2160@24", "4096x2160@24"}));
}

TEST(CtaHdmiVsdb, ModesTellThatTheyAreOfHdmiAndComeFromThisBlock) {
  const auto modes = hdmi(video, {0x00, 4 << 5, 1, 2, 3, 4}).modes();
  ASSERT_EQ(modes.size(), 4U);
  for (const vid_resolution_t& mode : modes) {
    EXPECT_EQ(mode.type, edid_lib::timing_type_t::hdmi);
    EXPECT_EQ(mode.location, edid_lib::timing_location_t::cta_hdmi_vsdb);
  }
}

TEST(CtaHdmiVsdb, UnknownHdmiVicsGiveNothing) {
  EXPECT_EQ(keys_of(hdmi(video, {0x00, 3 << 5, 5, 0, 1})), (keys_t{"3840x2160@30"}));
  EXPECT_TRUE(keys_of(hdmi(video, {0x00, 1 << 5, 5})).empty());
}

TEST(CtaHdmiVsdb, LatenciesStandBeforeTheHdmiVics) {
  EXPECT_EQ(hdmi(video, {}).vic_length_offset(), 10U);
  EXPECT_EQ(hdmi(video | latency, {}).vic_length_offset(), 12U);
  EXPECT_EQ(hdmi(video | interlaced_latency, {}).vic_length_offset(), 12U);
  EXPECT_EQ(hdmi(video | latency | interlaced_latency, {}).vic_length_offset(), 14U);
  EXPECT_EQ(keys_of(hdmi(video | latency, {1, 2, 0x00, 1 << 5, 3})), (keys_t{"3840x2160@24"}));
}

TEST(CtaHdmiVsdb, WithoutTheVideoFlagThereAreNoHdmiVics) {
  const cta_hdmi_vsdb_t block = hdmi(latency, {0, 0, 0x00, 1 << 5, 3});
  EXPECT_EQ(block.vic_length_offset(), 0xFFFFFFFFU);
  EXPECT_EQ(block.hdmi_vic_count(), 0U);
  EXPECT_TRUE(block.modes().empty());
}

TEST(CtaHdmiVsdb, AShortHdmiBlockHasNoHdmiVics) {
  const cta_hdmi_vsdb_t block(data_block(3, {0x03, 0x0C, 0x00, 0x10, 0x00, 0x00, 0x00}));
  EXPECT_EQ(block.vic_length_offset(), 0xFFFFFFFFU);
  EXPECT_TRUE(block.modes().empty());
  EXPECT_EQ(hdmi(video, {0x00}).hdmi_vic_count(), 0U);
}

TEST(CtaHdmiVsdb, OfAListThatRunsPastTheBlockTheEntriesThatAreThereCount) {
  const cta_hdmi_vsdb_t block = hdmi(video, {0x00, 7 << 5, 1, 2});
  EXPECT_EQ(block.hdmi_vic_count(), 7U);
  EXPECT_EQ(keys_of(block), (keys_t{"3840x2160@30", "3840x2160@25"}));
}

TEST(CtaHdmiVsdb, HdmiBlockOfAnotherIdIsNotValid) {
  EXPECT_TRUE(hdmi(0, {}).valid());
  EXPECT_FALSE(cta_hdmi_vsdb_t(data_block(3, {0x03, 0x0C, 0x01})).valid());
}

TEST(CtaHdmiVsdb, MadeWithoutBytesHasNoPhysicalAddressYet) {
  const cta_hdmi_vsdb_t block;
  const uint8_t expected[] = {0x65, 0x03, 0x0C, 0x00, 0xFF, 0xFF};
  EXPECT_TRUE(std::equal(block.bytes().begin(), block.bytes().end(), std::begin(expected), std::end(expected)));
  EXPECT_EQ(block.physical_address(), 0xFFFFU);
  EXPECT_TRUE(block.valid());
}

TEST(CtaHdmiVsdb, PhysicalAddressIsBigEndian) {
  cta_hdmi_vsdb_t block = hdmi(0, {});
  EXPECT_EQ(block.physical_address(), 0x1000U);
  block.set_physical_address(0x2345);
  EXPECT_EQ(block.byte(4), 0x23);
  EXPECT_EQ(block.byte(5), 0x45);
}

TEST(CtaHdmiVsdb, AShortBlockHasNoPhysicalAddress) {
  cta_hdmi_vsdb_t block(data_block(3, {0x03, 0x0C, 0x00, 0x10}));
  EXPECT_EQ(block.physical_address(), 0xFFFFFFFF);
  block.set_physical_address(0x2345);
  EXPECT_EQ(block.size(), 5U);
  EXPECT_EQ(block.byte(4), 0x10);
}

TEST(CtaHdmiVsdb, CapabilitiesMakeTheBlockLongEnough) {
  cta_hdmi_vsdb_t block;
  EXPECT_FALSE(block.supports_ai());
  block.set_supports_ai(true);
  EXPECT_EQ(block.size(), 7U);
  EXPECT_EQ(block.byte(0), 0x66);
  EXPECT_EQ(block.byte(6), 0x80);
  EXPECT_TRUE(block.supports_ai());
}

TEST(CtaHdmiVsdb, CapabilitiesAreOneBitEach) {
  cta_hdmi_vsdb_t block;
  block.set_deep_color_48bit(true);
  EXPECT_EQ(block.byte(6), 0x40);
  block.set_deep_color_36bit(true);
  EXPECT_EQ(block.byte(6), 0x60);
  block.set_deep_color_30bit(true);
  EXPECT_EQ(block.byte(6), 0x70);
  block.set_deep_color_ycc_444(true);
  EXPECT_EQ(block.byte(6), 0x78);
  block.set_dvi_dual(true);
  EXPECT_EQ(block.byte(6), 0x79);
  EXPECT_TRUE(block.deep_color_48bit() && block.deep_color_36bit() && block.deep_color_30bit() &&
              block.deep_color_ycc_444() && block.dvi_dual());
  block.set_deep_color_36bit(false);
  EXPECT_FALSE(block.deep_color_36bit());
  EXPECT_EQ(block.byte(6), 0x59);
}

TEST(CtaHdmiVsdb, GreatestTmdsClockIsInStepsOf5) {
  cta_hdmi_vsdb_t block;
  EXPECT_EQ(block.max_tmds_mhz(), 0U);
  block.set_max_tmds_mhz(304);
  EXPECT_EQ(block.size(), 8U);
  EXPECT_EQ(block.byte(7), 60);
  EXPECT_EQ(block.max_tmds_mhz(), 300U);
  block.set_max_tmds_mhz(5000);
  EXPECT_EQ(block.max_tmds_mhz(), 1275U);
}

TEST(CtaHdmiVsdb, CapabilitiesMakeABlockWithoutBytesLongEnoughToo) {
  cta_hdmi_vsdb_t block;
  block.reset();
  block.set_supports_ai(true);
  EXPECT_EQ(block.size(), 7U);
  EXPECT_EQ(block.byte(0), 6) << "the length without the tag";
  EXPECT_TRUE(block.supports_ai());
  EXPECT_FALSE(block.valid());
  block.set_max_tmds_mhz(300);
  EXPECT_EQ(block.size(), 8U);
  EXPECT_EQ(block.max_tmds_mhz(), 300U);
}

TEST(CtaHdmiVsdb, ABlockWithoutBytesTakesNoPhysicalAddress) {
  cta_hdmi_vsdb_t block;
  block.reset();
  block.set_physical_address(0x1000);
  block.set_hdmi_video_present(true);
  EXPECT_EQ(block.size(), 0U);
}

TEST(CtaHdmiVsdb, WhatIsToldOfAreThreeBits) {
  cta_hdmi_vsdb_t block = hdmi(0, {});
  block.set_latency_present(true);
  block.set_hdmi_video_present(true);
  EXPECT_EQ(block.byte(8), 0xA0);
  block.set_interlaced_latency_present(true);
  EXPECT_TRUE(block.latency_present() && block.interlaced_latency_present() && block.hdmi_video_present());
  cta_hdmi_vsdb_t shorter;
  shorter.set_latency_present(true);
  EXPECT_FALSE(shorter.latency_present());
  EXPECT_EQ(shorter.size(), 6U);
}

TEST(CtaHdmiVsdb, VicsAreToldWhetherOrNotTheyMeanAMode) {
  const cta_hdmi_vsdb_t block = hdmi(video, {0x00, 3 << 5, 5, 0, 1, 99});
  EXPECT_EQ(bytes_t(block.hdmi_vics().begin(), block.hdmi_vics().end()), (bytes_t{5, 0, 1}));
  EXPECT_TRUE(hdmi(0, {}).hdmi_vics().empty());
  EXPECT_TRUE(hdmi(video, {0x00, 3 << 5}).hdmi_vics().empty());
}

TEST(CtaHdmiVsdb, ClearedVicsLetTheRestMoveUp) {
  cta_hdmi_vsdb_t block = hdmi(video | latency, {1, 2, 0x08, 2 << 5 | 3, 1, 3, 0xA1, 0xA2, 0xA3});
  block.clear_hdmi_vics();
  EXPECT_EQ(from_8(block), (bytes_t{video | latency, 1, 2, 0x08, 3, 0xA1, 0xA2, 0xA3}));
  EXPECT_EQ(block.byte(0), 3 << 5 | (block.size() - 1));
  EXPECT_EQ(block.hdmi_vic_count(), 0U);
}

TEST(CtaHdmiVsdb, AddedVicsStandBeforeTheRest) {
  cta_hdmi_vsdb_t block = hdmi(video, {0x08, 1 << 5 | 2, 1, 0xA1, 0xA2});
  EXPECT_TRUE(block.add(vid_resolution_t("4096x2160@24")));
  EXPECT_EQ(from_8(block), (bytes_t{video, 0x08, 2 << 5 | 2, 1, 4, 0xA1, 0xA2}));
  EXPECT_EQ(keys_of(block), (keys_t{"3840x2160@30", "4096x2160@24"}));
  EXPECT_EQ(block.byte(0), 3 << 5 | (block.size() - 1));
}

TEST(CtaHdmiVsdb, TheSameVicCanBeAddedAgainUpToSeven) {
  cta_hdmi_vsdb_t block = hdmi(video, {0x00, 0x00});
  for (int i = 0; i < 7; ++i) {
    EXPECT_TRUE(block.add(vid_resolution_t("3840x2160@30")));
  }
  EXPECT_FALSE(block.add(vid_resolution_t("3840x2160@25")));
  EXPECT_EQ(block.hdmi_vic_count(), 7U);
}

TEST(CtaHdmiVsdb, AModeWithoutVicIsNotAdded) {
  cta_hdmi_vsdb_t block = hdmi(video, {0x00, 0x00});
  EXPECT_FALSE(block.add(vid_resolution_t("1920x1080@60")));
  EXPECT_EQ(block.size(), 11U);
}

TEST(CtaHdmiVsdb, ABlockWithoutRoomForTheListStaysAsItIs) {
  for (cta_hdmi_vsdb_t block :
       {hdmi(0, {0x00, 0x20, 1}), hdmi(video, {0x00}), hdmi(video | latency, {0x00, 0x20, 1}), cta_hdmi_vsdb_t()}) {
    const bytes_t before(block.bytes().begin(), block.bytes().end());
    block.clear_hdmi_vics();
    EXPECT_FALSE(block.add(vid_resolution_t("3840x2160@30")));
    EXPECT_EQ(bytes_t(block.bytes().begin(), block.bytes().end()), before);
  }
}

TEST(CtaHdmiVsdb, OfAListThatIsCutTheEntriesThatAreThereAreCleared) {
  cta_hdmi_vsdb_t block = hdmi(video, {0x00, 7 << 5 | 1, 1, 2});
  block.clear_hdmi_vics();
  EXPECT_EQ(from_8(block), (bytes_t{video, 0x00, 1}));
}

TEST(CtaHdmiVsdb, AFullBlockTakesNoVic) {
  cta_hdmi_vsdb_t block = hdmi(video, {0x00, 0x00});
  block.resize(32);
  EXPECT_FALSE(block.add(vid_resolution_t("3840x2160@30")));
  EXPECT_EQ(block.size(), 32U);
}
