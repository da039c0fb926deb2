#include "edid_lib/cta_vendor_data_blocks.h"

#include <gtest/gtest.h>

#include "test_support/edid_builder.h"

using edid_lib::cta_hdmi_forum_vsdb_t;
using edid_lib::cta_vendor_specific_data_block_t;
using test_support::data_block;

TEST(CtaVendorDataBlocks, IeeeIdIsLittleEndian) {
  EXPECT_EQ(cta_vendor_specific_data_block_t(data_block(3, {0x03, 0x0C, 0x00})).ieee_id(), 0x000C03U);
  EXPECT_EQ(cta_vendor_specific_data_block_t(data_block(3, {0xD8, 0x5D, 0xC4})).ieee_id(), 0xC45DD8U);
  EXPECT_EQ(cta_vendor_specific_data_block_t(data_block(3, {0x03, 0x0C})).ieee_id(), 0xFFFFFFFFU);
}

TEST(CtaVendorDataBlocks, ForumBlockIsValidAtVersion1) {
  EXPECT_TRUE(cta_hdmi_forum_vsdb_t(data_block(3, {0xD8, 0x5D, 0xC4, 1})).valid());
  EXPECT_FALSE(cta_hdmi_forum_vsdb_t(data_block(3, {0xD8, 0x5D, 0xC4, 2})).valid());
  EXPECT_FALSE(cta_hdmi_forum_vsdb_t(data_block(3, {0xD8, 0x5D, 0xC4})).valid());
  EXPECT_FALSE(cta_hdmi_forum_vsdb_t(data_block(3, {0xD9, 0x5D, 0xC4, 1})).valid());
}

TEST(CtaVendorDataBlocks, IeeeIdIsWrittenWhereThereIsRoomForIt) {
  cta_vendor_specific_data_block_t block(0x90848BU);
  EXPECT_EQ(block.size(), 4U);
  EXPECT_EQ(block.byte(1), 0x8B);
  EXPECT_EQ(block.byte(3), 0x90);
  EXPECT_TRUE(block.valid());
  block.set_ieee_id(0x000C03);
  EXPECT_EQ(block.ieee_id(), 0x000C03U);
  cta_vendor_specific_data_block_t shorter(data_block(3, {1, 2}));
  shorter.set_ieee_id(0x000C03);
  EXPECT_EQ(shorter.byte(1), 1);
  EXPECT_FALSE(shorter.valid());
}

TEST(CtaVendorDataBlocks, ForumBlockMadeWithoutBytesIsValid) {
  const cta_hdmi_forum_vsdb_t block;
  EXPECT_TRUE(block.valid());
  EXPECT_EQ(block.version(), 1);
  EXPECT_EQ(block.size(), 8U);
  EXPECT_EQ(block.max_tmds_rate(), 0U);
}

TEST(CtaVendorDataBlocks, ForumRateIsToldFrom340On) {
  cta_hdmi_forum_vsdb_t block;
  block.set_max_tmds_rate(600);
  EXPECT_EQ(block.byte(5), 120);
  EXPECT_EQ(block.max_tmds_rate(), 600U);
  block.set_max_tmds_rate(0);
  EXPECT_EQ(block.max_tmds_rate(), 600U);
  block.set_max_tmds_rate(339);
  EXPECT_EQ(block.max_tmds_rate(), 0U);
  block.set_max_tmds_rate(340);
  EXPECT_EQ(block.max_tmds_rate(), 340U);
  block.set_max_tmds_rate(1);
  EXPECT_EQ(block.max_tmds_rate(), 0U);
  block.set_max_tmds_rate(100000);
  EXPECT_EQ(block.max_tmds_rate(), 1275U);
}

TEST(CtaVendorDataBlocks, ForumFlagsAreOneBitEach) {
  cta_hdmi_forum_vsdb_t block;
  block.set_osd_disparity_3d(true);
  block.set_deep_color_420_30bit(true);
  EXPECT_EQ(block.byte(6), 0x01);
  EXPECT_EQ(block.byte(7), 0x01);
  block.set_deep_color_420_36bit(true);
  EXPECT_EQ(block.byte(7), 0x03);
  EXPECT_TRUE(block.osd_disparity_3d() && block.deep_color_420_30bit() && block.deep_color_420_36bit());
  block.set_deep_color_420_30bit(false);
  EXPECT_FALSE(block.deep_color_420_30bit());
  EXPECT_FALSE(block.scdc_present() || block.read_request_capable() || block.scrambles_up_to_340_mhz() ||
               block.deep_color_420_48bit());
  block.or_mask(6, 0xC8);
  block.or_mask(7, 0x04);
  EXPECT_TRUE(block.scdc_present() && block.read_request_capable() && block.scrambles_up_to_340_mhz() &&
              block.deep_color_420_48bit());
}

TEST(CtaVendorDataBlocks, AShortForumBlockTellsAndTakesNothing) {
  cta_hdmi_forum_vsdb_t block(data_block(3, {0xD8, 0x5D, 0xC4, 1}));
  block.set_max_tmds_rate(600);
  block.set_osd_disparity_3d(true);
  block.set_deep_color_420_36bit(true);
  EXPECT_EQ(block.size(), 5U);
  EXPECT_EQ(block.max_tmds_rate(), 0U);
  EXPECT_FALSE(block.osd_disparity_3d() || block.deep_color_420_36bit());
}
