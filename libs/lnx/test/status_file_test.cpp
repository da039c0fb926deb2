#include "lnx/src/status_file.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <string>

#include "test_support/comma_locale.h"

namespace {

const std::string path = "/tmp/status";

void write(const std::string& content) { std::ofstream(path, std::ios::binary) << content; }

std::string content() {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

/// The text that is read, "failed" if none is.
std::string text_of(const std::string& written) {
  write(written);
  std::string text = "as it was";
  return lnx::read_status_text(path, text) ? text : "failed, " + text;
}

/// How many descriptors this process has open.
std::ptrdiff_t open_descriptors() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), std::filesystem::directory_iterator());
}

int32_t integer_of(const std::string& written) {
  write(written);
  int32_t value = -77;
  EXPECT_TRUE(lnx::read_status_integer(path, value)) << written;
  return value;
}

}  // namespace

TEST(StatusFile, TheTextIsTheFirstLineWithoutItsEnd) {
  EXPECT_EQ(text_of("one\n"), "one");
  EXPECT_EQ(text_of("one"), "one");
  EXPECT_EQ(text_of("one\ntwo\n"), "one");
  EXPECT_EQ(text_of(" one \r\n"), " one \r");
  EXPECT_EQ(text_of(std::string("o\0e\n", 4)), std::string("o\0e", 3));
}

TEST(StatusFile, AnEmptyLineIsALine) {
  EXPECT_EQ(text_of("\n"), "");
  EXPECT_EQ(text_of("\ntwo\n"), "");
}

TEST(StatusFile, WithoutALineTheReadFailsAndTheOutputStays) {
  EXPECT_EQ(text_of(""), "failed, as it was");
  float real = 7.5F;
  EXPECT_FALSE(lnx::read_status_float(path, real));
  EXPECT_EQ(real, 7.5F);
  int32_t integer = 7;
  EXPECT_FALSE(lnx::read_status_integer(path, integer));
  EXPECT_EQ(integer, 7);
}

TEST(StatusFile, WithoutAFileTheReadFailsAndTheOutputStays) {
  std::string text = "as it was";
  EXPECT_FALSE(lnx::read_status_text("/tmp/none", text));
  EXPECT_EQ(text, "as it was");
  float real = 7.5F;
  EXPECT_FALSE(lnx::read_status_float("/tmp/none", real));
  EXPECT_EQ(real, 7.5F);
  int32_t integer = 7;
  EXPECT_FALSE(lnx::read_status_integer("/tmp/none", integer));
  EXPECT_EQ(integer, 7);
}

TEST(StatusFile, WhatOpensButCannotBeReadIsAFailure) {
  std::filesystem::create_directory("/tmp/folder");
  std::string text = "as it was";
  EXPECT_FALSE(lnx::read_status_text("/tmp/folder", text));
  EXPECT_EQ(text, "as it was");
}

TEST(StatusFile, ALineOfAnyLengthIsTakenWhole) {
  const std::string line(std::size_t{1} << 20, 'x');
  EXPECT_TRUE(text_of(line + "\nmore") == line);
}

TEST(StatusFile, AFloatIsTheNumberAtTheStartOfTheLine) {
  for (const auto& [written, expected] : {std::pair("41500\n", 41500.0F),
                                          {"-3.25", -3.25F},
                                          {"+1", 1.0F},
                                          {" \t42 apples\n", 42.0F},
                                          {"1e3\n", 1000.0F},
                                          {"0x10\n", 16.0F},
                                          {"16777217\n", 16777216.0F},
                                          {"1\n2\n", 1.0F}}) {
    write(written);
    float value = -7;
    EXPECT_TRUE(lnx::read_status_float(path, value)) << written;
    EXPECT_EQ(value, expected) << written;
  }
}

TEST(StatusFile, AFloatHasADecimalPointWhateverTheLocale) {
  const test_support::comma_locale_t comma;
  EXPECT_EQ(lnx::status_float("7.771514892"), 7.771514892F);
  EXPECT_EQ(lnx::status_float("7,5"), 7.0F);
  EXPECT_EQ(integer_of("255.9"), 255);
}

TEST(StatusFile, ALineThatIsNoNumberReadsZero) {
  for (const char* written : {"\n", "on\n", "-\n", " \n", ".\n", "--1\n", "\n5\n"}) {
    write(written);
    float value = -7;
    EXPECT_TRUE(lnx::read_status_float(path, value)) << written;
    EXPECT_EQ(value, 0.0F) << written;
  }
}

TEST(StatusFile, AFloatThatIsTooLargeIsInfinite) {
  const float infinite = std::numeric_limits<float>::infinity();
  EXPECT_EQ(lnx::status_float("1e39"), infinite);
  EXPECT_EQ(lnx::status_float("-1e39"), -infinite);
  EXPECT_EQ(lnx::status_float(std::string(100'000, '9')), infinite);
  EXPECT_EQ(lnx::status_float("inf"), infinite);
  EXPECT_TRUE(std::isnan(lnx::status_float("nan")));
}

TEST(StatusFile, AnIntegerIsAFloatWithoutItsFraction) {
  EXPECT_EQ(integer_of("255\n"), 255);
  EXPECT_EQ(integer_of("255.99\n"), 255);
  EXPECT_EQ(integer_of("-1.99\n"), -1);
  EXPECT_EQ(integer_of("-0.5\n"), 0);
  EXPECT_EQ(integer_of("none\n"), 0);
  EXPECT_EQ(integer_of("16777217\n"), 16777216);
}

TEST(StatusFile, AnIntegerOutOfRangeIsTheNearestThereIs) {
  EXPECT_EQ(integer_of("2147483520\n"), 2147483520);
  EXPECT_EQ(integer_of("2147483648\n"), std::numeric_limits<int32_t>::max());
  EXPECT_EQ(integer_of("1e39\n"), std::numeric_limits<int32_t>::max());
  EXPECT_EQ(integer_of("-2147483648\n"), std::numeric_limits<int32_t>::min());
  EXPECT_EQ(integer_of("-2147483904\n"), std::numeric_limits<int32_t>::min());
  EXPECT_EQ(integer_of("-inf\n"), std::numeric_limits<int32_t>::min());
}

TEST(StatusFile, WhatIsNoNumberByItsOwnWordIsTheIntegerZero) {
  EXPECT_EQ(integer_of("nan\n"), 0);
  EXPECT_EQ(integer_of("-nan\n"), 0);
}

TEST(StatusFile, AWrittenNumberReplacesTheContent) {
  write("a longer content\nof two lines\n");
  EXPECT_TRUE(lnx::write_status_integer(path, 128));
  EXPECT_EQ(content(), "128");
  EXPECT_TRUE(lnx::write_status_integer(path, std::numeric_limits<int32_t>::min()));
  EXPECT_EQ(content(), "-2147483648");
}

TEST(StatusFile, AWriteFailsWhereNoFileCanBeOpened) {
  EXPECT_FALSE(lnx::write_status_integer("/tmp/none/status", 1));
  std::filesystem::create_directory("/tmp/folder");
  EXPECT_FALSE(lnx::write_status_integer("/tmp/folder", 1));
}

TEST(StatusFile, AWriteThatTheDriverRefusesIsNotNoticed) { EXPECT_TRUE(lnx::write_status_integer("/dev/full", 1)); }

TEST(StatusFile, NothingStaysOpen) {
  const auto before = open_descriptors();
  EXPECT_EQ(text_of("one\n"), "one");
  EXPECT_EQ(text_of(""), "failed, as it was");
  EXPECT_EQ(integer_of("1\n"), 1);
  EXPECT_TRUE(lnx::write_status_integer(path, 128));
  EXPECT_TRUE(lnx::write_status_integer("/dev/full", 1));
  std::string text;
  EXPECT_FALSE(lnx::read_status_text("/tmp", text));
  EXPECT_EQ(open_descriptors(), before);
}
