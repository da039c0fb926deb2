#include "tools/vgnctl/property/utf8.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

using vgnctl::is_utf8;
using vgnctl::utf8_length;

namespace {

using namespace std::string_view_literals;

}  // namespace

TEST(Utf8, LengthIsThatOfTheFirstCharacter) {
  EXPECT_EQ(utf8_length("a\xFF"), 1U);
  EXPECT_EQ(utf8_length("\0"sv), 1U);
  EXPECT_EQ(utf8_length("\xC3\xA9x"), 2U);
  EXPECT_EQ(utf8_length("\xE2\x82\xAC"), 3U);
  EXPECT_EQ(utf8_length("\xF0\x9F\x98\x80"), 4U);
  EXPECT_EQ(utf8_length(""), 0U);
}

TEST(Utf8, FirstAndLastCharacterOfEachFormAreGood) {
  for (const auto text :
       {"\x7F"sv, "\xC2\x80"sv, "\xDF\xBF"sv, "\xE0\xA0\x80"sv, "\xEC\xBF\xBF"sv, "\xED\x80\x80"sv, "\xED\x9F\xBF"sv,
        "\xEE\x80\x80"sv, "\xEF\xBF\xBF"sv, "\xF0\x90\x80\x80"sv, "\xF3\xBF\xBF\xBF"sv, "\xF4\x8F\xBF\xBF"sv}) {
    EXPECT_EQ(utf8_length(text), text.size()) << testing::PrintToString(text);
  }
}

TEST(Utf8, CutOverlongSurrogateAndTooHighFormsAreNone) {
  for (const auto text :
       {"\x80"sv, "\xBF"sv, "\xC0\x80"sv, "\xC1\xBF"sv, "\xE0\x9F\xBF"sv, "\xED\xA0\x80"sv, "\xF0\x8F\xBF\xBF"sv,
        "\xF4\x90\x80\x80"sv, "\xF5\x80\x80\x80"sv, "\xFF"sv, "\xC3"sv, "\xE2\x82"sv, "\xF0\x9F\x98"sv, "\xC3x"sv,
        "\xE2\x82x"sv, "\xF0\x9F\x98x"sv, "\xF0\x9Fx\x80"sv}) {
    EXPECT_EQ(utf8_length(text), 0U) << testing::PrintToString(text);
  }
}

TEST(Utf8, TextIsGoodWithoutABadByte) {
  EXPECT_TRUE(is_utf8(""));
  EXPECT_TRUE(is_utf8("gr\xC3\xBC\xC3\x9F \xE2\x82\xAC"));
  EXPECT_FALSE(is_utf8("gr\xFC\xDF"));
  EXPECT_FALSE(is_utf8("ends in \xC3"));
}
