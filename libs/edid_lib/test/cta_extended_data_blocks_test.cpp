#include "edid_lib/cta_extended_data_blocks.h"

#include <gtest/gtest.h>

#include "test_support/edid_builder.h"

using namespace edid_lib;
using test_support::data_block;

namespace {

template <typename Block>
Block without_payload() {
  return Block(data_block(7, {Block::own_extended_tag}));
}

}  // namespace

TEST(CtaExtendedDataBlocks, ExtendedTagsHaveTheirNames) {
  const std::pair<uint8_t, std::string_view> names[] = {{0, "CTA Video Capability Tag"},
                                                        {1, "CTA Vendor Specific Video Block"},
                                                        {2, "CTA VESA Display Device Block"},
                                                        {3, "CTA VESA Video Timing Extension"},
                                                        {4, "CTA HDMI Video Block"},
                                                        {5, "CTA Colorimetry Block"},
                                                        {6, "CTA HDR Static Metadata Block"},
                                                        {7, "CTA HDR Dynamic Metadata Block"},
                                                        {13, "CTA Video Format Preference Block"},
                                                        {14, "CTA YCC 420 Video Block"},
                                                        {15, "CTA YCC 420 Capability Block"},
                                                        {16, "CTA Misc Audio Block"},
                                                        {17, "CTA Vendor Specific Audio Block"},
                                                        {18, "CTA HDMI Audio Block"},
                                                        {19, "CTA Room Config Block"},
                                                        {20, "CTA Speaker Location Block"},
                                                        {32, "CTA InfoFrame Block"}};
  for (const auto& [tag, name] : names) {
    EXPECT_EQ(extended_tag_name(tag), name);
    EXPECT_EQ(cta_extended_data_block_t(data_block(7, {tag})).extended_name(), name);
  }
  for (const uint8_t tag : {uint8_t{8}, uint8_t{12}, uint8_t{21}, uint8_t{31}, uint8_t{33}, uint8_t{255}}) {
    EXPECT_EQ(extended_tag_name(tag), "Undefined CTA Extended Data Block Tag");
    EXPECT_FALSE(is_known_extended_tag(tag));
  }
}

TEST(CtaExtendedDataBlocks, MadeWithoutBytesTheyAreValid) {
  EXPECT_TRUE(cta_video_capability_exdb_t().valid());
  EXPECT_TRUE(cta_colorimetry_exdb_t().valid());
  EXPECT_TRUE(cta_ycc_420_video_exdb_t().valid());
  EXPECT_TRUE(cta_ycc_420_capability_exdb_t().valid());
  EXPECT_EQ(cta_colorimetry_exdb_t().byte(0), 7 << 5 | 3);
  EXPECT_EQ(cta_ycc_420_video_exdb_t().byte(1), 14);
}

TEST(CtaExtendedDataBlocks, OfAnotherExtendedTagTheyAreNotValid) {
  EXPECT_FALSE(cta_colorimetry_exdb_t(data_block(7, {6, 0, 0})).valid());
  EXPECT_FALSE(cta_colorimetry_exdb_t(data_block(3, {5, 0, 0})).valid());
}

TEST(CtaExtendedDataBlocks, VideoCapabilityTellsItsFields) {
  const cta_video_capability_exdb_t block(data_block(7, {0, 0x80 | 0x40 | 3 << 4 | 2 << 2 | 1}));
  EXPECT_TRUE(block.quantization_ycc());
  EXPECT_TRUE(block.quantization_rgb());
  EXPECT_EQ(block.preferred_timing(), overscan_behavior_t::selectable);
  EXPECT_EQ(block.it_video(), overscan_behavior_t::always_underscan);
  EXPECT_EQ(block.ce_video(), overscan_behavior_t::always_overscan);
}

TEST(CtaExtendedDataBlocks, VideoCapabilitySettersOnlyAddBits) {
  cta_video_capability_exdb_t block;
  block.set_ce_video(overscan_behavior_t::always_overscan);
  EXPECT_EQ(block.byte(2), 0x01);
  block.set_ce_video(overscan_behavior_t::always_underscan);
  EXPECT_EQ(block.byte(2), 0x03);
  block.set_it_video(overscan_behavior_t::always_underscan);
  EXPECT_EQ(block.byte(2), 0x0B);
  block.set_preferred_timing(overscan_behavior_t::selectable);
  EXPECT_EQ(block.byte(2), 0x3B);
  block.set_quantization_ycc(true);
  block.set_quantization_rgb(true);
  EXPECT_EQ(block.byte(2), 0xFB);
  block.set_quantization_ycc(false);
  block.set_ce_video(overscan_behavior_t::no_data);
  EXPECT_EQ(block.byte(2), 0xFB);
}

TEST(CtaExtendedDataBlocks, AShortVideoCapabilityTellsNothing) {
  auto block = without_payload<cta_video_capability_exdb_t>();
  block.set_quantization_ycc(true);
  EXPECT_EQ(block.size(), 2U);
  EXPECT_FALSE(block.quantization_ycc() || block.quantization_rgb());
  EXPECT_EQ(block.preferred_timing(), overscan_behavior_t::no_data);
}

TEST(CtaExtendedDataBlocks, OverscanBehaviorsHaveTheirTexts) {
  EXPECT_EQ(text_of(overscan_behavior_t{0}), "No Data");
  EXPECT_EQ(text_of(overscan_behavior_t{1}), "Always Overscan");
  EXPECT_EQ(text_of(overscan_behavior_t{2}), "Always Underscan");
  EXPECT_EQ(text_of(overscan_behavior_t{3}), "Selectable Overscan or Underscan");
  EXPECT_EQ(text_of(overscan_behavior_t{4}), "Unknown");
}

TEST(CtaExtendedDataBlocks, ColorimetryTellsAndTakesItsBits) {
  cta_colorimetry_exdb_t block(data_block(7, {5, 0x81, 0x02}));
  EXPECT_EQ(block.colorimetries(), 0x81);
  EXPECT_TRUE(block.bt_2020_rgb() && block.xvycc_601());
  EXPECT_FALSE(block.bt_2020_ycc() || block.bt_2020_cycc() || block.op_rgb() || block.op_ycc_601() ||
               block.sycc_601() || block.xvycc_709());
  EXPECT_EQ(block.metadata(), 2);
  block.set_colorimetries(0x7E);
  EXPECT_TRUE(block.bt_2020_ycc() && block.bt_2020_cycc() && block.op_rgb() && block.op_ycc_601() && block.sycc_601() &&
              block.xvycc_709());
  EXPECT_EQ(colorimetries_text(block.colorimetries()), "xvYCC709 sYCC601 opYCC601 opRGB BT2020cYCC BT2020YCC ");
  EXPECT_EQ(colorimetries_text(0x81), "xvYCC601 BT2020RGB ");
}

TEST(CtaExtendedDataBlocks, ColorimetryMetadataIsAtMost15) {
  cta_colorimetry_exdb_t block;
  EXPECT_TRUE(block.set_metadata(15));
  EXPECT_FALSE(block.set_metadata(16));
  EXPECT_EQ(block.metadata(), 15);
}

TEST(CtaExtendedDataBlocks, AShortColorimetryTellsNothing) {
  auto block = without_payload<cta_colorimetry_exdb_t>();
  block.set_colorimetries(0xFF);
  EXPECT_FALSE(block.set_metadata(1));
  EXPECT_EQ(block.size(), 2U);
  EXPECT_EQ(block.colorimetries(), 0);
  EXPECT_EQ(block.metadata(), 0);
}

TEST(CtaExtendedDataBlocks, ColorimetryOfThreeBytesTakesNoMetadata) {
  cta_colorimetry_exdb_t block(data_block(7, {5, 0x81}));
  EXPECT_FALSE(block.set_metadata(0));
  block.set_colorimetries(0x01);
  EXPECT_EQ(block.colorimetries(), 0x01);
  EXPECT_EQ(block.size(), 3U);
}

TEST(CtaExtendedDataBlocks, Ycc420VideoIsAListOfCodes) {
  cta_ycc_420_video_exdb_t block(data_block(7, {14, 96, 97}));
  EXPECT_EQ(std::vector<uint8_t>(block.vics().begin(), block.vics().end()), (std::vector<uint8_t>{96, 97}));
  EXPECT_TRUE(block.add(101));
  EXPECT_EQ(block.vics().back(), 101);
  EXPECT_EQ(block.byte(0), 7 << 5 | 4);
  block.clear_vics();
  EXPECT_TRUE(block.vics().empty());
  EXPECT_TRUE(block.valid());
}

TEST(CtaExtendedDataBlocks, Ycc420VideoHasRoomForThirtyCodes) {
  cta_ycc_420_video_exdb_t block;
  for (uint8_t vic = 1; vic <= 30; ++vic) {
    EXPECT_TRUE(block.add(vic));
  }
  EXPECT_FALSE(block.add(31));
  block.reset();
  EXPECT_FALSE(block.add(1));
  block.clear_vics();
  EXPECT_EQ(block.size(), 0U);
  EXPECT_TRUE(block.vics().empty());
}

TEST(CtaExtendedDataBlocks, Ycc420CapabilityIsABitForEachVideoEntry) {
  cta_ycc_420_capability_exdb_t block;
  EXPECT_TRUE(block.means_all());
  EXPECT_FALSE(block.contains(0));
  EXPECT_TRUE(block.set(9, true));
  EXPECT_EQ(block.size(), 4U);
  EXPECT_EQ(block.byte(0), 7 << 5 | 3);
  EXPECT_EQ(block.byte(3), 0x02);
  EXPECT_TRUE(block.contains(9));
  EXPECT_FALSE(block.means_all());
  EXPECT_TRUE(block.set(9, false));
  EXPECT_FALSE(block.contains(9));
  EXPECT_TRUE(block.set(30, false));
  EXPECT_EQ(block.size(), 4U);
}

TEST(CtaExtendedDataBlocks, Ycc420CapabilityHasRoomFor240Bits) {
  cta_ycc_420_capability_exdb_t block;
  EXPECT_TRUE(block.set(239, true));
  EXPECT_TRUE(block.contains(239));
  EXPECT_EQ(block.size(), 32U);
  EXPECT_FALSE(block.set(240, true));
  EXPECT_FALSE(block.contains(240));
}

TEST(CtaExtendedDataBlocks, Ycc420CapabilityWithoutExtendedTagTakesNoBit) {
  cta_ycc_420_capability_exdb_t block(data_block(7, {}));
  EXPECT_FALSE(block.set(0, true));
  EXPECT_FALSE(block.set(0, false));
  EXPECT_EQ(block.size(), 1U);
  block.reset();
  EXPECT_FALSE(block.set(0, true));
  EXPECT_EQ(block.size(), 0U);
}
