#include "zyl/platform_files.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace {

const std::string path = "/tmp/platform_file";

void write(const std::string& text) { std::ofstream(path) << text; }

}  // namespace

TEST(PlatformFiles, NumberIsThatOfTheFirstLine) {
  write("12\n34\n");
  EXPECT_EQ(zyl::number_in_first_line(path, 1), 12);
  write("0");
  EXPECT_EQ(zyl::number_in_first_line(path, 1), 0);
}

TEST(PlatformFiles, NumberMayHaveBlanksAndASignInFront) {
  write(" \t12\n");
  EXPECT_EQ(zyl::number_in_first_line(path, 1), 12);
  write("+12");
  EXPECT_EQ(zyl::number_in_first_line(path, 1), 12);
  write(" -12");
  EXPECT_EQ(zyl::number_in_first_line(path, 1), -12);
}

TEST(PlatformFiles, NumberFallsBackWithoutAFileALineOrADigit) {
  EXPECT_EQ(zyl::number_in_first_line("/tmp/missing", 1), 1);
  write("");
  EXPECT_EQ(zyl::number_in_first_line(path, 1), 1);
  write("\n7\n");
  EXPECT_EQ(zyl::number_in_first_line(path, 1), 1);
  for (const char* text : {"none\n", " \n", "+\n", "+-7\n", "+ 7\n"}) {
    write(text);
    EXPECT_EQ(zyl::number_in_first_line(path, 1), 1) << text;
  }
  write("99999999999\n");
  EXPECT_EQ(zyl::number_in_first_line(path, 1), 1);
}

TEST(PlatformFiles, WordIsFoundInAnyLine) {
  write("flags : fpu vme\nflags : fpu hypervisor vme");
  EXPECT_TRUE(zyl::any_line_contains(path, "hypervisor"));
  EXPECT_FALSE(zyl::any_line_contains(path, "docker"));
  EXPECT_FALSE(zyl::any_line_contains("/tmp/missing", "docker"));
}
