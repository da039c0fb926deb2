#include "edid_lib/cta_extension.h"

#include <gtest/gtest.h>

#include "recording_visitor.h"
#include "test_support/edid_builder.h"

using edid_lib::cta_extension_t;
using test_support::data_block;
using test_support::detailed_entry;
using names_t = recording_visitor_t::names_t;

namespace {

const auto entry = detailed_entry({148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5});

/// An extension whose bytes from 4 on are `rest`.
std::vector<uint8_t> extension(uint8_t detailed_offset, const std::vector<uint8_t>& rest, uint8_t flags = 0) {
  std::vector<uint8_t> bytes{2, 3, detailed_offset, flags};
  bytes.insert(bytes.end(), rest.begin(), rest.end());
  bytes.resize(128, 0);
  return bytes;
}

names_t names_of(cta_extension_t extension_block) {
  recording_visitor_t visitor;
  extension_block.accept(&visitor, true);
  return visitor.forward_names;
}

std::vector<uint8_t> entry_bytes() { return {entry.begin(), entry.end()}; }

}  // namespace

TEST(CtaExtension, SizeTagAndRevisionArePutRight) {
  const cta_extension_t block(std::vector<uint8_t>{0x77});
  EXPECT_EQ(block.size(), 128U);
  EXPECT_EQ(block.byte(0), 2);
  EXPECT_EQ(block.byte(1), 3);
  EXPECT_TRUE(block.valid());
  EXPECT_EQ(cta_extension_t(std::vector<uint8_t>(300, 0)).size(), 128U);
  EXPECT_EQ(cta_extension_t(std::span<const uint8_t>{}).size(), 128U);
}

TEST(CtaExtension, ChecksumStaysAsItIs) {
  auto bytes = extension(0, {});
  bytes[127] = 0x55;
  EXPECT_EQ(cta_extension_t(bytes).byte(127), 0x55);
}

TEST(CtaExtension, NativeCountIsTheLowNibble) { EXPECT_EQ(cta_extension_t(extension(4, {}, 0xF3)).native_count(), 3); }

TEST(CtaExtension, OffsetZeroMeansNoBlocksAndNoDetailedTimings) {
  EXPECT_EQ(names_of(cta_extension_t(extension(0, entry_bytes()))), (names_t{"CTA Extension"}));
}

TEST(CtaExtension, OffsetFourMeansNoBlocksButDetailedTimings) {
  EXPECT_EQ(names_of(cta_extension_t(extension(4, entry_bytes()))),
            (names_t{"CTA Extension", "Detailed Timings at 4 for 6"}));
  EXPECT_EQ(names_of(cta_extension_t(extension(4, {}))), (names_t{"CTA Extension"}));
}

TEST(CtaExtension, AFirstTimingWhoseClockEndsInAZeroByteHidesTheDetailedTimings) {
  auto bytes = entry_bytes();
  bytes[0] = 0x00;
  bytes[1] = 0xFA;
  EXPECT_EQ(names_of(cta_extension_t(extension(4, bytes))), (names_t{"CTA Extension"}));
}

TEST(CtaExtension, OffsetInsideTheHeaderStartsTheDetailedTimingsThere) {
  EXPECT_EQ(names_of(cta_extension_t(extension(1, {}))), (names_t{"CTA Extension", "Detailed Timings at 1 for 7"}));
}

TEST(CtaExtension, OffsetBehindTheBlockMeansDataBlocksToItsEnd) {
  const auto names = names_of(cta_extension_t(extension(255, data_block(2, {16}))));
  ASSERT_EQ(names.size(), 2U);
  EXPECT_EQ(names[1], "CTA Video Data Block class");
}

TEST(CtaExtension, OffsetAtTheChecksumLeavesNoRoomForDetailedTimings) {
  auto bytes = extension(127, {});
  bytes[127] = 0x55;
  EXPECT_EQ(names_of(cta_extension_t(bytes)), (names_t{"CTA Extension", "Detailed Timings at 127 for 0"}));
}

TEST(CtaExtension, AnHdmiVendorBlockIsFound) {
  std::vector<uint8_t> bytes(17, 0);
  bytes[0] = 0x70;
  bytes[1] = 0x03;
  bytes[2] = 0x0C;
  const cta_extension_t block(extension(21, bytes));
  ASSERT_EQ(block.data_blocks().size(), 1U);
  EXPECT_EQ(block.data_blocks()[0]->size(), 17U);
  EXPECT_NE(dynamic_cast<edid_lib::cta_hdmi_vsdb_t*>(block.data_blocks()[0].get()), nullptr);
}

TEST(CtaExtension, BlocksWithoutMeaningAreDroppedAndTheNextIsFound) {
  auto bytes = data_block(6, {1, 2, 3});
  const auto video = data_block(2, {16});
  bytes.insert(bytes.end(), video.begin(), video.end());
  const cta_extension_t block(extension(10, bytes));
  ASSERT_EQ(block.data_blocks().size(), 1U);
  EXPECT_EQ(block.data_blocks()[0]->tag(), 2);
}

TEST(CtaExtension, ABlockThatRunsOverTheOffsetIsReadWhole) {
  const cta_extension_t block(extension(6, data_block(2, {16, 31, 4, 19})));
  ASSERT_EQ(block.data_blocks().size(), 1U);
  EXPECT_EQ(block.data_blocks()[0]->size(), 5U);
}

TEST(CtaExtension, ABlockThatRunsOverTheEndIsReadToTheEnd) {
  const std::vector<uint8_t> bytes(123, 0x5F);  // video blocks of 31 entries, the last of them cut
  const cta_extension_t block(extension(127, bytes));
  std::vector<std::size_t> sizes;
  for (const auto& one : block.data_blocks()) {
    EXPECT_EQ(one->tag(), 2);
    sizes.push_back(one->size());
  }
  EXPECT_EQ(sizes, (std::vector<std::size_t>{32, 32, 32, 28}));
}

TEST(CtaExtension, AnInvalidDataBlockMakesItInvalid) {
  EXPECT_TRUE(cta_extension_t(extension(9, data_block(3, {0xD8, 0x5D, 0xC4, 1}))).valid());
  EXPECT_FALSE(cta_extension_t(extension(9, data_block(3, {0xD8, 0x5D, 0xC4, 2}))).valid());
  EXPECT_FALSE(cta_extension_t(extension(6, data_block(3, {0xD8}))).valid());
}

TEST(CtaExtension, AnExtendedBlockWithoutExtendedTagIsDropped) {
  EXPECT_TRUE(cta_extension_t(extension(5, data_block(7, {}))).data_blocks().empty());
}
