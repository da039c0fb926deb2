#include "zyl/datastream.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <utility>

using namespace std::string_literals;
using zyl::datastream_strio_t;

TEST(Datastream, WritesIntegersLittleEndianWithoutAlignment) {
  datastream_strio_t out;
  out << uint8_t{0x01} << uint16_t{0x0302} << uint32_t{0x07060504} << int32_t{-1};
  EXPECT_EQ(out.data(), "\x01\x02\x03\x04\x05\x06\x07\xff\xff\xff\xff");
}

TEST(Datastream, WithSwapSetReversesTheBytesOfIntegersInBothDirections) {
  datastream_strio_t stream;
  stream.swap = true;
  stream << uint8_t{0x01} << uint16_t{0x0203} << uint32_t{0x04050607};
  EXPECT_EQ(stream.data(), "\x01\x02\x03\x04\x05\x06\x07");
  uint8_t a = 0;
  uint16_t b = 0;
  uint32_t c = 0;
  stream >> a >> b >> c;
  EXPECT_EQ(a, 0x01);
  EXPECT_EQ(b, 0x0203);
  EXPECT_EQ(c, 0x04050607U);
}

TEST(Datastream, WritesBooleansAsOneByte) {
  datastream_strio_t stream;
  stream << true << false;
  EXPECT_EQ(stream.data(), "\x01\x00"s);
  bool first = false;
  bool second = true;
  stream >> first >> second;
  EXPECT_TRUE(first);
  EXPECT_FALSE(second);
}

TEST(Datastream, WritesStringsAsLengthAndBytesWithoutTerminator) {
  datastream_strio_t stream;
  stream << "a\0b"s << std::string();
  EXPECT_EQ(stream.data(), "\x03\0\0\0a\0b\0\0\0\0"s);
  std::string text;
  std::string empty = "kept?";
  stream >> text >> empty;
  EXPECT_EQ(text, "a\0b"s);
  EXPECT_EQ(empty, "");
}

TEST(Datastream, TakesTheBytesThatAreThereOfAStringThatAnnouncesMore) {
  datastream_strio_t stream("\xff\xff\xff\xff"s + std::string(600, 'x'));
  std::string text;
  stream >> text;
  EXPECT_EQ(text, std::string(600, 'x'));
  EXPECT_TRUE(stream.data().empty());
}

TEST(Datastream, ReadsAnIntegerThatIsCutShortWithZerosForWhatDidNotCome) {
  datastream_strio_t stream("\x01\x02"s);
  uint32_t value = 0xffffffff;
  stream >> value;
  EXPECT_EQ(value, 0x0201U);
}

TEST(Datastream, AShortReadLeavesTheRestOfTheTargetAsItWas) {
  datastream_strio_t stream("ab"s);
  std::string target = "wxyz";
  EXPECT_EQ(stream.read(target.data(), 4), 2U);
  EXPECT_EQ(target, "abyz");
  EXPECT_EQ(stream.read(target.data(), 4), 0U);
}

TEST(Datastream, ReadsIntoNothingSkipBytes) {
  datastream_strio_t stream("abcd"s);
  EXPECT_EQ(stream.read(nullptr, 3), 3U);
  EXPECT_EQ(stream.data(), "d");
}

TEST(Datastream, WritesAfterReadsAppendToWhatIsLeft) {
  datastream_strio_t stream("abc"s);
  stream.read(nullptr, 2);
  stream.write("de", 2);
  EXPECT_EQ(stream.data(), "cde");
}

TEST(Datastream, ACopyIsReadOnItsOwn) {
  datastream_strio_t stream("ab"s);
  datastream_strio_t copy = stream;
  copy.read(nullptr, 2);
  EXPECT_EQ(stream.data(), "ab");
}

TEST(Datastream, AMoveTakesWhatIsLeftAndTheByteOrder) {
  datastream_strio_t stream("abc"s);
  stream.swap = true;
  stream.read(nullptr, 1);
  datastream_strio_t constructed = std::move(stream);
  EXPECT_EQ(constructed.data(), "bc");
  EXPECT_TRUE(constructed.swap);
  datastream_strio_t assigned("old"s);
  assigned = std::move(constructed);
  EXPECT_EQ(assigned.data(), "bc");
  EXPECT_TRUE(assigned.swap);
}

TEST(Datastream, AStreamThatWasMovedFromIsEmptyAndCanBeWrittenAgain) {
  datastream_strio_t stream("abc"s);
  stream.read(nullptr, 1);
  const datastream_strio_t taken = std::move(stream);
  EXPECT_EQ(stream.data(), "");  // NOLINT(bugprone-use-after-move): what is tested
  uint8_t byte = 0xff;
  stream >> byte;
  EXPECT_EQ(byte, 0);
  stream.write("de", 2);
  EXPECT_EQ(stream.data(), "de");
}
