#include "edid_lib/cta_data_block.h"

#include <gtest/gtest.h>

#include <typeinfo>

#include "edid_lib/cta_audio_data_block.h"
#include "edid_lib/cta_extended_data_blocks.h"
#include "edid_lib/cta_hdmi_vsdb.h"
#include "edid_lib/cta_vendor_data_blocks.h"
#include "edid_lib/cta_video_data_block.h"
#include "test_support/edid_builder.h"

using namespace edid_lib;
using test_support::data_block;

namespace {

template <typename T>
bool is(const std::unique_ptr<cta_data_block_t>& block) {
  const cta_data_block_t* const made = block.get();
  return made != nullptr && typeid(*made) == typeid(T);
}

std::unique_ptr<cta_data_block_t> make(uint8_t tag, std::initializer_list<uint8_t> payload = {}) {
  return make_cta_data_block(data_block(tag, payload));
}

}  // namespace

TEST(CtaDataBlock, TagDecidesTheClass) {
  EXPECT_TRUE(is<cta_audio_data_block_t>(make(1)));
  EXPECT_TRUE(is<cta_video_data_block_t>(make(2)));
  EXPECT_TRUE(is<cta_data_block_t>(make(4)));
  EXPECT_TRUE(is<cta_data_block_t>(make(5)));
}

TEST(CtaDataBlock, TagsWithoutMeaningGiveNoBlock) {
  EXPECT_EQ(make(0, {1, 2, 3}), nullptr);
  EXPECT_EQ(make(6, {1, 2, 3}), nullptr);
}

TEST(CtaDataBlock, IeeeIdDecidesTheClassOfAVendorBlock) {
  EXPECT_TRUE(is<cta_hdmi_vsdb_t>(make(3, {0x03, 0x0C, 0x00, 0x10, 0x00})));
  EXPECT_TRUE(is<cta_hdmi_forum_vsdb_t>(make(3, {0xD8, 0x5D, 0xC4, 1})));
  EXPECT_TRUE(is<cta_vendor_specific_data_block_t>(make(3, {0x8B, 0x84, 0x90})));
}

TEST(CtaDataBlock, AVendorBlockTooShortForItsIdIsKeptAndNotValid) {
  const auto block = make(3, {0x03, 0x0C});
  EXPECT_TRUE(is<cta_vendor_specific_data_block_t>(block));
  EXPECT_FALSE(block->valid());
}

TEST(CtaDataBlock, ExtendedTagDecidesTheClassOfAnExtendedBlock) {
  EXPECT_TRUE(is<cta_video_capability_exdb_t>(make(7, {0, 0})));
  EXPECT_TRUE(is<cta_colorimetry_exdb_t>(make(7, {5, 0, 0})));
  EXPECT_TRUE(is<cta_ycc_420_video_exdb_t>(make(7, {14})));
  EXPECT_TRUE(is<cta_ycc_420_capability_exdb_t>(make(7, {15})));
}

TEST(CtaDataBlock, OtherKnownExtendedTagsGiveThePlainExtendedBlock) {
  for (const uint8_t tag : std::initializer_list<uint8_t>{1, 2, 3, 4, 6, 7, 13, 16, 17, 18, 19, 20, 32}) {
    EXPECT_TRUE(is<cta_extended_data_block_t>(make(7, {tag}))) << int{tag};
  }
}

TEST(CtaDataBlock, UnknownOrMissingExtendedTagsGiveNoBlock) {
  for (const uint8_t tag : std::initializer_list<uint8_t>{8, 12, 21, 31, 33, 255}) {
    EXPECT_EQ(make(7, {tag}), nullptr) << int{tag};
  }
  EXPECT_EQ(make(7), nullptr);
}

TEST(CtaDataBlock, IsNamedByItsTag) {
  EXPECT_EQ(make(1)->name(), "CTA Audio Data Block");
  EXPECT_EQ(make(2)->name(), "CTA Video Data Block");
  EXPECT_EQ(make(3)->name(), "CTA Vendor Specific Data Block");
  EXPECT_EQ(make(4)->name(), "CTA Speaker Data Block");
  EXPECT_EQ(make(5)->name(), "CTA VESA Display Transfer Characteristic Block");
  EXPECT_EQ(make(7, {5})->name(), "CTA Extended Data Block");
  EXPECT_EQ(make(3, {0x03, 0x0C, 0x00})->name(), "CTA HDMI Vendor-Specific Data Block");
  EXPECT_EQ(make(3, {0xD8, 0x5D, 0xC4})->name(), "CTA HDMI Forum Vendor-Specific Data Block");
  EXPECT_EQ(cta_data_block_t(data_block(6, {})).name(), "Undefined CTA Data Block Tag");
}

TEST(CtaDataBlock, IsValidUnderItsOwnTag) {
  EXPECT_TRUE(make(1)->valid());
  EXPECT_TRUE(make(4)->valid());
  EXPECT_TRUE(make(7, {5})->valid());
  EXPECT_FALSE(cta_audio_data_block_t(data_block(2, {})).valid());
  EXPECT_FALSE(cta_data_block_t(std::vector<uint8_t>{}).valid());
  EXPECT_FALSE(cta_extended_data_block_t(data_block(7, {})).valid());
  EXPECT_FALSE(cta_colorimetry_exdb_t(data_block(7, {0})).valid());
}

TEST(CtaDataBlock, ResizingTellsTheLengthInTheFirstByte) {
  cta_data_block_t block(data_block(4, {1, 2, 3}));
  block.resize(6, 0xAA);
  EXPECT_EQ(block.byte(0), 4 << 5 | 5);
  EXPECT_EQ(block.byte(5), 0xAA);
  block.resize(2);
  EXPECT_EQ(block.byte(0), 4 << 5 | 1);
  EXPECT_EQ(block.size(), 2U);
}

TEST(CtaDataBlock, ALengthOfMoreThan31IsNotTold) {
  cta_data_block_t block(data_block(4, {1, 2, 3}));
  block.resize(32);
  EXPECT_EQ(block.byte(0), 4 << 5 | 31);
  block.resize(33);
  EXPECT_EQ(block.byte(0), 4 << 5 | 31);
  EXPECT_EQ(block.size(), 33U);
  block.resize(0);
  EXPECT_EQ(block.size(), 0U);
}

TEST(CtaDataBlock, AClonedBlockHasItsClassAndBytesWhateverTheseMeanByNow) {
  std::vector<std::unique_ptr<cta_data_block_t>> blocks;
  for (const uint8_t tag : {uint8_t{1}, uint8_t{2}, uint8_t{3}, uint8_t{4}}) {
    blocks.push_back(make(tag, {1, 2, 3}));
  }
  blocks.push_back(make(3, {0x03, 0x0C, 0x00, 0x10, 0x00}));
  blocks.push_back(make(3, {0xD8, 0x5D, 0xC4, 1}));
  for (const uint8_t tag : std::initializer_list<uint8_t>{0, 5, 6, 14, 15}) {
    blocks.push_back(make(7, {tag, 0}));
  }
  for (const auto& block : blocks) {
    block->or_mask(0, 0xE0);
    block->or_mask(1, 0x40);
    const auto clone = block->clone();
    const cta_data_block_t& source = *block;
    const cta_data_block_t& cloned = *clone;
    EXPECT_EQ(typeid(cloned), typeid(source));
    EXPECT_EQ(std::vector<uint8_t>(cloned.bytes().begin(), cloned.bytes().end()),
              std::vector<uint8_t>(source.bytes().begin(), source.bytes().end()));
    EXPECT_EQ(cloned.valid(), source.valid());
  }
}

TEST(CtaDataBlock, NoBytesGiveNoBlock) { EXPECT_EQ(make_cta_data_block({}), nullptr); }
