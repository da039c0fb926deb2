#include "edid_lib/edid_block.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "test_support/edid_builder.h"

using edid_lib::checksum_of;
using edid_lib::edid_block_t;

namespace {

class plain_block_t final : public edid_block_t {
 public:
  explicit plain_block_t(std::span<const uint8_t> block_bytes) : edid_block_t(block_bytes) {}
  std::string_view name() const override { return "Plain Block"; }
  void accept(edid_lib::visitor_t*, bool) override {}
};

plain_block_t block(std::vector<uint8_t> bytes) { return plain_block_t(bytes); }

std::string text_of(const edid_block_t& one) {
  std::ostringstream out;
  out << one;
  return out.str();
}

}  // namespace

TEST(EdidBlock, MasksChangeTheirBitsAlone) {
  plain_block_t one = block({0xF0, 0x0F});
  one.and_mask(0, 0x3C);
  one.or_mask(1, 0x80);
  EXPECT_EQ(one.byte(0), 0x30);
  EXPECT_EQ(one.byte(1), 0x8F);
  one.set_mask(1, 0x03, false);
  one.set_mask(0, 0x41, true);
  EXPECT_EQ(one.byte(0), 0x71);
  EXPECT_EQ(one.byte(1), 0x8C);
  EXPECT_TRUE(one.has_mask(1, 0x0C));
  EXPECT_FALSE(one.has_mask(1, 0x03));
}

TEST(EdidBlock, BeyondTheEndNothingIsReadOrWritten) {
  plain_block_t one = block({0xFF});
  one.or_mask(1, 0xFF);
  one.and_mask(1, 0);
  one.set_mask(255, 1, true);
  EXPECT_EQ(one.size(), 1U);
  EXPECT_EQ(one.byte(1), 0);
  EXPECT_FALSE(one.has_mask(1, 0xFF));
}

TEST(EdidBlock, ClearKeepsTheSizeAndResetDoesNot) {
  plain_block_t one = block({1, 2, 3});
  one.clear();
  EXPECT_EQ(one.size(), 3U);
  EXPECT_EQ(one.byte(2), 0);
  one.reset();
  EXPECT_EQ(one.size(), 0U);
}

TEST(EdidBlock, ChecksumMakesTheSumZero) {
  EXPECT_EQ(block({1, 2, 3}).checksum(3), 0xFA);
  EXPECT_EQ(block({1, 2, 3}).checksum(2), 0xFD);
  EXPECT_EQ(block({0xFF, 0xFF, 0x02}).checksum(3), 0x00);
  EXPECT_EQ(block(test_support::edid_builder_t().build()).checksum(128), 0);
  const auto built = block(test_support::edid_builder_t().build());
  EXPECT_EQ(built.checksum(127), built.byte(127));
}

TEST(EdidBlock, ChecksumTakesTheBytesThatThereAre) {
  EXPECT_EQ(block({1, 2, 3}).checksum(127), 0xFA);
  EXPECT_EQ(block({1, 2, 3}).checksum(0), 0);
  EXPECT_EQ(block({}).checksum(127), 0);
  EXPECT_EQ(checksum_of({}, 0), 0);
}

TEST(EdidBlock, IsWrittenInNumberedRowsOfSixteenBytes) {
  std::vector<uint8_t> bytes(33, 0xAB);
  bytes[0] = 0x0F;
  EXPECT_EQ(text_of(block(bytes)),
            "  1: 0f ab ab ab ab ab ab ab ab ab ab ab ab ab ab ab\n"
            "  2: ab ab ab ab ab ab ab ab ab ab ab ab ab ab ab ab\n");
}

TEST(EdidBlock, RowNumbersStandRightInThreePlaces) {
  const std::string text = text_of(block(std::vector<uint8_t>(std::size_t{16} * 1000, 0)));
  EXPECT_NE(text.find("\n 10: 00"), std::string::npos);
  EXPECT_NE(text.find("\n100: 00"), std::string::npos);
  EXPECT_NE(text.find("\n1000: 00"), std::string::npos);
}

TEST(EdidBlock, ShorterThanARowItWritesNothing) {
  EXPECT_EQ(text_of(block(std::vector<uint8_t>(15, 1))), "");
  EXPECT_EQ(text_of(block({})), "");
}
