#include "tools/vgnctl/edid/hex_text.h"

#include <gtest/gtest.h>

#include <numeric>

using vgnctl::bytes_of_hex;
using vgnctl::hex_digits_of;
using vgnctl::hex_lines;
using vgnctl::hex_text;

namespace {

using bytes_t = std::vector<uint8_t>;

bytes_t counting(std::size_t count) {
  bytes_t bytes(count);
  std::iota(bytes.begin(), bytes.end(), uint8_t{0});
  return bytes;
}

}  // namespace

TEST(HexText, HasTwoLowerCaseDigitsAByteAndNothingBetween) {
  EXPECT_EQ(hex_text(bytes_t{0x00, 0x0F, 0xA0, 0xFF}), "000fa0ff");
  EXPECT_EQ(hex_text({}), "");
}

TEST(HexLines, HaveSixteenBytesEach) {
  EXPECT_EQ(hex_lines(counting(18)), "00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f\n10 11\n");
  EXPECT_EQ(hex_lines(counting(16)), "00 01 02 03 04 05 06 07 08 09 0a 0b 0c 0d 0e 0f\n");
  EXPECT_EQ(hex_lines({}), "");
}

TEST(HexLines, HaveAnEmptyLineBetweenBlocks) {
  EXPECT_EQ(hex_lines(counting(128)).find("\n\n"), std::string::npos);
  const std::string two = hex_lines(counting(256));
  EXPECT_NE(two.find("7e 7f\n\n80 81"), std::string::npos);
  EXPECT_EQ(two.substr(two.size() - 6), "fe ff\n");
}

TEST(HexDigits, AreTakenFromTextWithNothingElseButWhiteSpace) {
  EXPECT_EQ(hex_digits_of(" 0f\tA\r\n0\v\f"), "0fA0");
  EXPECT_EQ(hex_digits_of(""), "");
  for (const char* other : {"0x00", "00,01", "0g", "00\x80"}) {
    EXPECT_EQ(hex_digits_of(other), std::nullopt) << other;
  }
  EXPECT_EQ(hex_digits_of(std::string_view("00\0", 3)), std::nullopt);
}

TEST(BytesOfHex, TakesEitherCaseAndLeavesALoneDigitOut) {
  EXPECT_EQ(bytes_of_hex("00ffFFa0A00"), (bytes_t{0x00, 0xFF, 0xFF, 0xA0, 0xA0}));
  EXPECT_EQ(bytes_of_hex("0"), bytes_t{});
}

TEST(BytesOfHex, ReadsWhatIsWritten) {
  const bytes_t bytes = counting(256);
  EXPECT_EQ(bytes_of_hex(hex_text(bytes)), bytes);
  EXPECT_EQ(bytes_of_hex(*hex_digits_of(hex_lines(bytes))), bytes);
}
