#include "edid_lib/cta_audio_data_block.h"

#include <gtest/gtest.h>

#include "test_support/edid_builder.h"

using namespace edid_lib;
using test_support::data_block;

namespace {

/// Two channels of LPCM at 32 to 48 kHz with 16 and 24 bit, and six of AC-3.
cta_audio_data_block_t television() {
  return cta_audio_data_block_t(data_block(1, {0x09, 0x07, 0x05, 0x15, 0x07, 0x50}));
}

}  // namespace

TEST(CtaAudioDataBlock, TellsFormatChannelsAndRatesOfEachDescriptor) {
  const cta_audio_data_block_t block = television();
  ASSERT_EQ(block.count(), 2U);
  EXPECT_EQ(block.format(), cta_audio_data_block_t::linear_pcm);
  EXPECT_EQ(block.channels(), 2U);
  EXPECT_EQ(block.sample_rates(), 0x07);
  EXPECT_EQ(block.third_byte(), 0x05);
  EXPECT_EQ(block.format(1), 2U);
  EXPECT_EQ(block.channels(1), 6U);
  EXPECT_EQ(block.third_byte(1), 0x50);
}

TEST(CtaAudioDataBlock, WithoutADescriptorThereIsNothingToTell) {
  cta_audio_data_block_t block;
  EXPECT_TRUE(block.valid());
  EXPECT_EQ(block.count(), 0U);
  EXPECT_EQ(block.channels(), 0xFFFFFFFF);
  EXPECT_EQ(block.format(), 0U);
  EXPECT_EQ(block.sample_rates(), 0);
  EXPECT_EQ(block.third_byte(), 0);
  EXPECT_EQ(television().channels(2), 0xFFFFFFFF);
  block.reset();
  EXPECT_EQ(block.channels(), 0xFFFFFFFF);
}

TEST(CtaAudioDataBlock, ADescriptorThatIsCutDoesNotCount) {
  EXPECT_EQ(cta_audio_data_block_t(data_block(1, {0x09, 0x07, 0x05, 0x15, 0x07})).count(), 1U);
}

TEST(CtaAudioDataBlock, WritesEachFieldAlone) {
  cta_audio_data_block_t block(2);
  EXPECT_EQ(block.size(), 7U);
  EXPECT_EQ(block.byte(0), 1 << 5 | 6);
  block.or_mask(4, 0x80);
  block.set_format(15, 1);
  block.set_channels(8, 1);
  block.set_sample_rates(0xFF, 1);
  block.set_third_byte(0xA5, 1);
  EXPECT_EQ(block.byte(4), 0xFF);
  EXPECT_EQ(block.byte(5), 0x7F);
  EXPECT_EQ(block.byte(6), 0xA5);
  block.set_format(1, 1);
  block.set_channels(2, 1);
  EXPECT_EQ(block.byte(4), 0x89);
  EXPECT_EQ(block.byte(1), 0);
}

TEST(CtaAudioDataBlock, ChannelsAreStoredLessOneInThreeBits) {
  cta_audio_data_block_t block(1);
  block.set_channels(9);
  EXPECT_EQ(block.channels(), 1U);
  block.set_channels(0);
  EXPECT_EQ(block.channels(), 8U);
}

TEST(CtaAudioDataBlock, WhatIsNotThereIsNotWritten) {
  cta_audio_data_block_t block = television();
  block.set_format(3, 2);
  block.set_channels(3, 2);
  block.set_sample_rates(3, 2);
  block.set_third_byte(3, 2);
  EXPECT_EQ(block.size(), television().size());
  EXPECT_TRUE(std::equal(block.bytes().begin(), block.bytes().end(), television().bytes().begin()));
}

TEST(CtaAudioDataBlock, HasRoomForTenDescriptors) {
  EXPECT_EQ(cta_audio_data_block_t(10).count(), 10U);
  EXPECT_EQ(cta_audio_data_block_t(11).count(), 10U);
}

TEST(CtaAudioDataBlock, FormatsHaveTheirTexts) {
  const std::string_view texts[] = {"Invalid",
                                    "Linear Pulse Code Modulation (LPCM)",
                                    "AC-3",
                                    "MPEG1",
                                    "MP3",
                                    "MPEG2",
                                    "AAC",
                                    "DTS",
                                    "ATRAC",
                                    "One-bit Audio (SACD)",
                                    "DD+",
                                    "DTS-HD",
                                    "Dolby TrueHD",
                                    "DST Audio",
                                    "Microsoft WMA Pro",
                                    "Invalid"};
  for (uint32_t format = 0; format < std::size(texts); ++format) {
    EXPECT_EQ(audio_format_text(format), texts[format]);
  }
  EXPECT_EQ(audio_format_text(0xFFFFFFFF), "Invalid");
}

TEST(CtaAudioDataBlock, RatesAndSizesHaveTheirWordsWithABlankBehindEach) {
  EXPECT_EQ(sample_rates_text(0x7F), "32 kHz 44.1 kHz 48 kHz 88.2 kHz 96 kHz 176.4 kHz 192 kHz ");
  EXPECT_EQ(sample_rates_text(0x04), "48 kHz ");
  EXPECT_EQ(sample_rates_text(0x80), "");
  EXPECT_EQ(bit_depths_text(0x07), "16 bit 20 bit 24 bit ");
  EXPECT_EQ(bit_depths_text(0xF8), "");
}
