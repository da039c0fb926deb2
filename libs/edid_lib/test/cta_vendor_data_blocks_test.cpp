#include "edid_lib/cta_vendor_data_blocks.h"
#include "edid_lib/cta_hdmi_vsdb.h"

#include <gtest/gtest.h>

#include "test_support/edid_builder.h"

using edid_lib::cta_hdmi_forum_vsdb_t;
using edid_lib::cta_hdmi_vsdb_t;
using edid_lib::cta_vendor_specific_data_block_t;
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
  return cta_hdmi_vsdb_t(bytes);
}

std::vector<std::string> keys_of(const cta_hdmi_vsdb_t& block) {
  std::vector<std::string> keys;
  for (const auto& mode : block.modes()) {
    keys.push_back(mode.key());
  }
  return keys;
}

using keys_t = std::vector<std::string>;

}  // namespace

TEST(CtaVendorDataBlocks, IeeeIdIsLittleEndian) {
  EXPECT_EQ(cta_vendor_specific_data_block_t(data_block(3, {0x03, 0x0C, 0x00})).ieee_id(), 0x000C03U);
  EXPECT_EQ(cta_vendor_specific_data_block_t(data_block(3, {0xD8, 0x5D, 0xC4})).ieee_id(), 0xC45DD8U);
  EXPECT_EQ(cta_vendor_specific_data_block_t(data_block(3, {0x03, 0x0C})).ieee_id(), 0xFFFFFFFFU);
}

TEST(CtaVendorDataBlocks, HdmiVicsGiveTheirModes) {
  EXPECT_EQ(keys_of(hdmi(video, {0x00, 4 << 5, 1, 2, 3, 4})),
            (keys_t{"3840x2160@30", "3840x2160@25", "3840x2160@24", "4096x2160@24"}));
  EXPECT_EQ(hdmi(video, {0x00, 1 << 5, 1}).modes().at(0).location, edid_lib::timing_location_t::cta_hdmi_vsdb);
}

TEST(CtaVendorDataBlocks, UnknownHdmiVicsGiveNothing) {
  EXPECT_EQ(keys_of(hdmi(video, {0x00, 3 << 5, 5, 0, 1})), (keys_t{"3840x2160@30"}));
  EXPECT_TRUE(keys_of(hdmi(video, {0x00, 1 << 5, 5})).empty());
}

TEST(CtaVendorDataBlocks, LatenciesStandBeforeTheHdmiVics) {
  EXPECT_EQ(hdmi(video, {}).vic_length_offset(), 10U);
  EXPECT_EQ(hdmi(video | latency, {}).vic_length_offset(), 12U);
  EXPECT_EQ(hdmi(video | interlaced_latency, {}).vic_length_offset(), 12U);
  EXPECT_EQ(hdmi(video | latency | interlaced_latency, {}).vic_length_offset(), 14U);
  EXPECT_EQ(keys_of(hdmi(video | latency, {1, 2, 0x00, 1 << 5, 3})), (keys_t{"3840x2160@24"}));
}

TEST(CtaVendorDataBlocks, WithoutTheVideoFlagThereAreNoHdmiVics) {
  const cta_hdmi_vsdb_t block = hdmi(latency, {0, 0, 0x00, 1 << 5, 3});
  EXPECT_EQ(block.vic_length_offset(), 0xFFFFFFFFU);
  EXPECT_EQ(block.hdmi_vic_count(), 0U);
  EXPECT_TRUE(block.modes().empty());
}

TEST(CtaVendorDataBlocks, AShortHdmiBlockHasNoHdmiVics) {
  const cta_hdmi_vsdb_t block(data_block(3, {0x03, 0x0C, 0x00, 0x10, 0x00, 0x00, 0x00}));
  EXPECT_EQ(block.vic_length_offset(), 0xFFFFFFFFU);
  EXPECT_TRUE(block.modes().empty());
  EXPECT_EQ(hdmi(video, {0x00}).hdmi_vic_count(), 0U);
}

TEST(CtaVendorDataBlocks, OfAListThatRunsPastTheBlockTheEntriesThatAreThereCount) {
  const cta_hdmi_vsdb_t block = hdmi(video, {0x00, 7 << 5, 1, 2});
  EXPECT_EQ(block.hdmi_vic_count(), 7U);
  EXPECT_EQ(keys_of(block), (keys_t{"3840x2160@30", "3840x2160@25"}));
}

TEST(CtaVendorDataBlocks, HdmiBlockOfAnotherIdIsNotValid) {
  EXPECT_TRUE(hdmi(0, {}).valid());
  EXPECT_FALSE(cta_hdmi_vsdb_t(data_block(3, {0x03, 0x0C, 0x01})).valid());
}

TEST(CtaVendorDataBlocks, ForumBlockIsValidAtVersion1) {
  EXPECT_TRUE(cta_hdmi_forum_vsdb_t(data_block(3, {0xD8, 0x5D, 0xC4, 1})).valid());
  EXPECT_FALSE(cta_hdmi_forum_vsdb_t(data_block(3, {0xD8, 0x5D, 0xC4, 2})).valid());
  EXPECT_FALSE(cta_hdmi_forum_vsdb_t(data_block(3, {0xD8, 0x5D, 0xC4})).valid());
  EXPECT_FALSE(cta_hdmi_forum_vsdb_t(data_block(3, {0xD9, 0x5D, 0xC4, 1})).valid());
}
