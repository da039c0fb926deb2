#include "engine_lib/videng_status_block.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <set>
#include <string>
#include <vector>

namespace {

class VidengStatusBlock : public testing::Test {
 protected:
  uint32_t word_at(std::size_t offset) const {
    uint32_t value = 0;
    std::memcpy(&value, bytes.data() + offset, sizeof value);
    return value;
  }

  std::vector<std::byte> bytes = std::vector<std::byte>(videng::status_block_t::size);
  videng::status_block_t block{bytes};
};

}  // namespace

TEST(VidengDepayloader, KindsHaveTheirWords) {
  EXPECT_STREQ(videng::depayloader_word(0), "none");
  EXPECT_STREQ(videng::depayloader_word(1), "visengi");
  EXPECT_STREQ(videng::depayloader_word(2), "mediacast_rtsp");
  EXPECT_STREQ(videng::depayloader_word(3), "mediacast_file");
  EXPECT_STREQ(videng::depayloader_word(4), "mediacast_dmabuf");
  EXPECT_STREQ(videng::depayloader_word(5), "mediacast_v4l2");
  EXPECT_STREQ(videng::depayloader_word(6), "null");
}

TEST(VidengDepayloader, AnyOtherKindIsUnknown) {
  EXPECT_STREQ(videng::depayloader_word(7), "unknown");
  EXPECT_STREQ(videng::depayloader_word(-1), "unknown");
}

TEST_F(VidengStatusBlock, ADecoderHasItsFieldsAtTheirOffsets) {
  const videng::decoder_entry_t last = block.decoder(24);
  const std::size_t start = 0x0F30 + 24 * 400;
  last.type().store(4);
  last.instance().store(-2);
  last.payload_count().store(12);
  last.rx_count().store(16);
  last.decrypt_err_count().store(36);
  last.frame_count().store(56);
  last.config_result().store(-68);
  last.decoded_count().store(72);
  EXPECT_EQ(word_at(start), 4U);
  EXPECT_EQ(word_at(start + 4), 0xFFFFFFFEU);
  EXPECT_EQ(word_at(start + 12), 12U);
  EXPECT_EQ(word_at(start + 16), 16U);
  EXPECT_EQ(word_at(start + 36), 36U);
  EXPECT_EQ(word_at(start + 56), 56U);
  EXPECT_EQ(word_at(start + 68), static_cast<uint32_t>(-68));
  EXPECT_EQ(word_at(start + 72), 72U);
  EXPECT_EQ(last.config_result().load(), -68);
}

TEST_F(VidengStatusBlock, AddingReturnsTheOldValue) {
  const auto count = block.decoder(0).decrypt_err_count();
  count.store(7);
  EXPECT_EQ(count.add(2), 7U);
  EXPECT_EQ(count.load(), 9U);
}

TEST_F(VidengStatusBlock, ClearingADecodersCountersTouchesTheirBytesOnly) {
  std::fill(bytes.begin(), bytes.end(), std::byte{0x5a});
  block.decoder(1).clear_counters();
  std::set<std::size_t> expected;
  const std::size_t start = 0x0F30 + 400;
  for (const auto& [first, last] : {std::pair{20U, 43U}, {48U, 59U}, {64U, 67U}}) {
    for (std::size_t offset = first; offset <= last; ++offset) {
      expected.insert(start + offset);
    }
  }
  std::set<std::size_t> cleared;
  for (std::size_t offset = 0; offset < bytes.size(); ++offset) {
    if (bytes[offset] == std::byte{0}) {
      cleared.insert(offset);
    }
  }
  EXPECT_EQ(cleared, expected);
}

TEST_F(VidengStatusBlock, OutputsHaveTheirNamesAtTheirOffsets) {
  block.set_name(videng::uvcs, 1, "u");
  block.set_name(videng::mc_hdmi_outs, 2, "m");
  block.set_name(videng::raw_outs, 1, "r");
  block.set_name(videng::mc_rtsp_outs, 3, "s");
  EXPECT_EQ(word_at(0x3640 + 124), 'u');
  EXPECT_EQ(word_at(0x3738 + 2 * 88), 'm');
  EXPECT_EQ(word_at(0x3840 + 84), 'r');
  EXPECT_EQ(word_at(0x38E8 + 3 * 1036), 's');
  EXPECT_EQ(block.name(videng::raw_outs, 0), "");
  EXPECT_EQ(block.name(videng::raw_outs, 1), "r");
}

TEST_F(VidengStatusBlock, ANameWithoutTerminatorEndsWhereItsFieldEnds) {
  std::fill(bytes.begin(), bytes.end(), std::byte{'x'});
  EXPECT_EQ(block.name(videng::uvcs, 0), std::string(68, 'x'));
  EXPECT_EQ(block.name(videng::mc_hdmi_outs, 0), std::string(84, 'x'));
  EXPECT_EQ(block.name(videng::raw_outs, 1), std::string(80, 'x'));
  EXPECT_EQ(block.name(videng::mc_rtsp_outs, 3), std::string(68, 'x'));
}

TEST_F(VidengStatusBlock, ANameThatIsTooLongIsCutBeforeTheNextField) {
  block.raw_out_config_result(0).store(-1);
  block.set_name(videng::raw_outs, 0, std::string(200, 'x'));
  EXPECT_EQ(block.name(videng::raw_outs, 0), std::string(79, 'x'));
  EXPECT_EQ(block.raw_out_config_result(0).load(), -1);
}

TEST_F(VidengStatusBlock, ARawOutputHasItsResultBehindItsName) {
  block.raw_out_config_result(1).store(3);
  EXPECT_EQ(word_at(0x3840 + 84 + 80), 3U);
}

TEST(VidengStatusBlockDeathTest, AnIndexOutsideItsTableEndsTheProcess) {
  std::vector<std::byte> bytes(videng::status_block_t::size);
  const videng::status_block_t block(bytes);
  EXPECT_EXIT(block.decoder(25), testing::KilledBySignal(SIGABRT), "index < decoder_count");
  EXPECT_EXIT(block.name(videng::raw_outs, 2), testing::KilledBySignal(SIGABRT), "index < table.count");
}

TEST(VidengStatusBlockDeathTest, TooFewBytesEndTheProcess) {
  std::vector<std::byte> bytes(videng::status_block_t::size - 1);
  EXPECT_EXIT(videng::status_block_t{bytes}, testing::KilledBySignal(SIGABRT), "mapped.size.. >= size");
}
