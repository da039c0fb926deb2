#include "edid_lib/cta_extension.h"

#include <gtest/gtest.h>

#include <typeinfo>

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

TEST(CtaExtension, AnotherTagOrRevisionMakesItInvalid) {
  cta_extension_t block(extension(4, {}));
  block.or_mask(0, 0x40);
  EXPECT_FALSE(block.valid());
  block.and_mask(0, 0x02);
  EXPECT_TRUE(block.valid());
  block.or_mask(1, 0x04);
  EXPECT_FALSE(block.valid());
}

TEST(CtaExtension, AnInvalidDataBlockMakesItInvalid) {
  EXPECT_TRUE(cta_extension_t(extension(9, data_block(3, {0xD8, 0x5D, 0xC4, 1}))).valid());
  EXPECT_FALSE(cta_extension_t(extension(9, data_block(3, {0xD8, 0x5D, 0xC4, 2}))).valid());
  EXPECT_FALSE(cta_extension_t(extension(6, data_block(3, {0xD8}))).valid());
}

TEST(CtaExtension, AnExtendedBlockWithoutExtendedTagIsDropped) {
  EXPECT_TRUE(cta_extension_t(extension(5, data_block(7, {}))).data_blocks().empty());
}

TEST(CtaExtension, MadeWithoutBytesIsEmptyAndValid) {
  const cta_extension_t block;
  EXPECT_EQ(block.size(), 128U);
  EXPECT_TRUE(block.valid());
  EXPECT_TRUE(block.data_blocks().empty());
  EXPECT_EQ(block.detailed_timings(), nullptr);
  EXPECT_EQ(block.detailed_offset(), 0);
}

TEST(CtaExtension, FlagsAreOneBitEach) {
  cta_extension_t block(extension(0, {}, 0x05));
  block.set_underscan(true);
  EXPECT_EQ(block.byte(3), 0x85);
  block.set_basic_audio(true);
  EXPECT_EQ(block.byte(3), 0xC5);
  block.set_ycc_444(true);
  EXPECT_EQ(block.byte(3), 0xE5);
  block.set_ycc_422(true);
  EXPECT_EQ(block.byte(3), 0xF5);
  EXPECT_TRUE(block.underscan() && block.basic_audio() && block.ycc_444() && block.ycc_422());
  block.set_native_count(2);
  EXPECT_EQ(block.byte(3), 0xF2);
  block.set_ycc_444(false);
  EXPECT_FALSE(block.ycc_444());
  EXPECT_EQ(block.byte(3), 0xD2);
}

TEST(CtaExtension, BlocksAreFoundByTheirTags) {
  auto bytes = data_block(2, {16});
  for (const auto& more : {data_block(7, {5, 1, 0}), data_block(2, {31}), data_block(7, {0, 0})}) {
    bytes.insert(bytes.end(), more.begin(), more.end());
  }
  const cta_extension_t block(extension(static_cast<uint8_t>(4 + bytes.size()), bytes));
  EXPECT_EQ(block.find_block(2), block.data_blocks()[0].get());
  EXPECT_EQ(block.find_block(7), block.data_blocks()[1].get());
  EXPECT_EQ(block.find_block(3), nullptr);
  EXPECT_EQ(block.find_extended_block(0), block.data_blocks()[3].get());
  EXPECT_EQ(block.find_extended_block(14), nullptr);
  EXPECT_TRUE(block.has_block(2) && block.has_extended_block(5));
  EXPECT_FALSE(block.has_block(1) || block.has_extended_block(15));
}

TEST(CtaExtension, DetailedTimingsThatAreThereHaveTheirOffsetInTheBlock) {
  cta_extension_t block(extension(4, entry_bytes()));
  EXPECT_EQ(&block.detailed(), block.detailed_timings());
  EXPECT_EQ(block.detailed().offset(), 4U);
  EXPECT_EQ(block.detailed().capacity(), 6U);
}

TEST(CtaExtension, DetailedTimingsThatAreMadeHaveTheirOffsetInTheEdid) {
  cta_extension_t block(extension(20, data_block(4, {1, 2, 3})));
  ASSERT_EQ(block.detailed_timings(), nullptr);
  EXPECT_EQ(block.detailed().offset(), 148U);
  EXPECT_EQ(block.detailed().capacity(), 5U);
  EXPECT_EQ(block.detailed().byte(0), 1);
  EXPECT_FALSE(block.detailed().add(edid_lib::vid_resolution_t("1920x1080@60"))) << "padding is in use";
  block.detailed().clear();
  EXPECT_TRUE(block.detailed().add(edid_lib::vid_resolution_t("1920x1080@60")));
  cta_extension_t full(extension(255, {}));
  EXPECT_EQ(full.detailed().capacity(), 0U);
}

TEST(CtaExtension, OffsetFollowsTheLengthsThatTheBlocksTell) {
  cta_extension_t block;
  block.refresh_offset();
  EXPECT_EQ(block.detailed_offset(), 0);
  block.detailed();
  block.refresh_offset();
  EXPECT_EQ(block.detailed_offset(), 4);
  block.add_block(std::make_unique<edid_lib::cta_hdmi_vsdb_t>());
  block.add_block(std::make_unique<edid_lib::cta_video_data_block_t>());
  block.add_block(nullptr);
  block.refresh_offset();
  EXPECT_EQ(block.detailed_offset(), 11);
}

TEST(CtaExtension, OffsetCountsTheLengthThatABlockTellsNotTheOneThatItHas) {
  const std::vector<uint8_t> bytes(123, 0x5F);  // four blocks of 31 entries, but only 27 of the last are there
  cta_extension_t block(extension(127, bytes));
  ASSERT_EQ(block.data_blocks().back()->size(), 28U);
  block.refresh_offset();
  EXPECT_EQ(block.detailed_offset(), 4 + 4 * 32);
}

TEST(CtaExtension, PutTogetherUntouchedItIsAsItWasButForTheChecksum) {
  auto rest = data_block(2, {16, 31});
  const auto colorimetry = data_block(7, {5, 1, 0});
  rest.insert(rest.end(), colorimetry.begin(), colorimetry.end());
  rest.insert(rest.end(), entry.begin(), entry.end());
  const auto bytes = extension(11, rest, 0xF1);
  auto whole = cta_extension_t(bytes).assemble();
  EXPECT_EQ(edid_lib::checksum_of(whole, 128), 0);
  whole[127] = 0;
  EXPECT_EQ(whole, bytes);
}

TEST(CtaExtension, PutTogetherHasTheBlocksThatWereAdded) {
  cta_extension_t block;
  auto video = std::make_unique<edid_lib::cta_video_data_block_t>();
  video->add(edid_lib::vid_resolution_t("1920x1080@60"));
  block.add_block(std::move(video));
  block.refresh_offset();
  block.detailed().clear();
  block.detailed().add(edid_lib::vid_resolution_t("1280x720@60"));
  block.set_native_count(1);
  const auto whole = block.assemble();
  EXPECT_EQ(edid_lib::checksum_of(whole, 128), 0);
  const cta_extension_t read(whole);
  EXPECT_EQ(read.detailed_offset(), 6);
  EXPECT_EQ(read.native_count(), 1);
  ASSERT_EQ(read.data_blocks().size(), 1U);
  ASSERT_NE(read.detailed_timings(), nullptr);
  EXPECT_EQ(read.detailed_timings()->modes().at(0).key(), "1280x720@60");
}

TEST(CtaExtension, PutTogetherEmptyHasOffset0AndWithDetailedTimingsAlone4) {
  cta_extension_t block;
  EXPECT_EQ(block.assemble()[2], 0);
  block.detailed().clear();
  block.detailed().add(edid_lib::vid_resolution_t("1280x720@60"));
  EXPECT_EQ(block.assemble()[2], 4);
  EXPECT_EQ(cta_extension_t(block.assemble()).detailed_timings()->modes().size(), 1U);
}

TEST(CtaExtension, WhatDoesNotFitIsLeftOut) {
  cta_extension_t block;
  block.detailed().clear();
  for (int i = 0; i < 6; ++i) {
    block.detailed().add(edid_lib::vid_resolution_t("1280x720@60"));
  }
  for (int i = 0; i < 4; ++i) {
    block.add_block(std::make_unique<edid_lib::cta_data_block_t>(data_block(4, {1, 2, 3})));
    block.add_block(std::make_unique<edid_lib::cta_data_block_t>(std::vector<uint8_t>(32, 0x9F)));
  }
  const cta_extension_t read(block.assemble());
  std::vector<std::size_t> sizes;
  for (const auto& one : read.data_blocks()) {
    sizes.push_back(one->size());
  }
  EXPECT_EQ(sizes, (std::vector<std::size_t>{4, 32, 4, 32, 4, 32, 4}));
  EXPECT_EQ(read.detailed_offset(), 116);
  EXPECT_EQ(read.detailed_timings(), nullptr);
  EXPECT_TRUE(read.valid());
}

TEST(CtaExtension, ABlockThatWasCutTellsItsLengthWhenPutTogether) {
  const std::vector<uint8_t> bytes(123, 0x5F);
  const cta_extension_t read(cta_extension_t(extension(127, bytes)).assemble());
  ASSERT_EQ(read.data_blocks().size(), 3U) << "the fourth has the checksum for its last byte";
}

TEST(CtaExtension, CopiesHaveBlocksOfTheirOwn) {
  cta_extension_t block(extension(24, data_block(2, {16})));
  block.detailed().clear();
  cta_extension_t copy(block);
  copy.find_block(2)->clear();
  copy.detailed().add(edid_lib::vid_resolution_t("1280x720@60"));
  EXPECT_EQ(block.find_block(2)->size(), 2U);
  EXPECT_TRUE(block.detailed_timings()->modes().empty());
  block = copy;
  EXPECT_EQ(block.find_block(2)->size(), 1U);
}

TEST(CtaExtension, ACopyKeepsABlockThatHasLostItsBytes) {
  cta_extension_t block;
  block.add_block(std::make_unique<edid_lib::cta_hdmi_vsdb_t>());
  block.add_block(std::make_unique<edid_lib::cta_video_data_block_t>());
  block.find_block(2)->reset();
  const cta_extension_t copy(block);
  ASSERT_EQ(copy.data_blocks().size(), 2U);
  EXPECT_FALSE(copy.valid());
  EXPECT_EQ(copy.find_block(2), copy.data_blocks()[1].get());
}

TEST(CtaExtension, ACopyOfABlockOfAnotherIdOrTagStaysInvalid) {
  cta_extension_t block;
  auto hdmi = std::make_unique<edid_lib::cta_hdmi_vsdb_t>();
  hdmi->set_ieee_id(0x123456);
  block.add_block(std::move(hdmi));
  auto unknown = std::make_unique<edid_lib::cta_colorimetry_exdb_t>();
  unknown->or_mask(1, 0x40);
  block.add_block(std::move(unknown));
  const cta_extension_t copy(block);
  EXPECT_FALSE(copy.valid());
  ASSERT_EQ(copy.data_blocks().size(), 2U);
  for (std::size_t i = 0; i < 2; ++i) {
    const auto& source = *block.data_blocks()[i];
    const auto& copied = *copy.data_blocks()[i];
    EXPECT_EQ(typeid(copied), typeid(source));
    EXPECT_FALSE(copied.valid());
  }
}

TEST(CtaExtension, AResetLeavesNothing) {
  cta_extension_t block(extension(6, data_block(2, {16}), 0xF1));
  block.detailed();
  block.reset();
  EXPECT_EQ(block.size(), 0U);
  EXPECT_FALSE(block.valid());
  EXPECT_TRUE(block.data_blocks().empty());
  EXPECT_EQ(block.detailed_timings(), nullptr);
  block.set_underscan(true);
  block.refresh_offset();
  EXPECT_EQ(block.size(), 0U);
  EXPECT_EQ(names_of(block), (names_t{"CTA Extension"}));
  EXPECT_EQ(cta_extension_t(block.assemble()).byte(3), 0);
}
