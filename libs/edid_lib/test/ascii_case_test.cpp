#include "edid_lib/ascii_case.h"

#include <gtest/gtest.h>

using edid_lib::contains_ignoring_case;
using edid_lib::same_ignoring_case;
using namespace std::string_view_literals;

TEST(AsciiCase, TheCaseOfLettersDoesNotCount) {
  EXPECT_TRUE(same_ignoring_case("SMPTE 170", "smpte 170"));
  EXPECT_TRUE(same_ignoring_case("azAZ", "AZaz"));
  EXPECT_TRUE(same_ignoring_case("", ""));
  EXPECT_FALSE(same_ignoring_case("RGB", "RGBA"));
  EXPECT_FALSE(same_ignoring_case("RGB", ""));
}

TEST(AsciiCase, WhatStandsBesideTheLettersHasNoCase) {
  EXPECT_FALSE(same_ignoring_case("@[", "`{"));
  EXPECT_FALSE(same_ignoring_case("\xC4", "\xE4")) << "letters of Latin-1 are bytes";
}

TEST(AsciiCase, NothingBehindANulIsLeftOut) {
  EXPECT_FALSE(same_ignoring_case("name\0rest"sv, "name"));
  EXPECT_FALSE(same_ignoring_case("name\0a"sv, "name\0b"sv));
  EXPECT_TRUE(same_ignoring_case("name\0a"sv, "NAME\0A"sv));
  EXPECT_TRUE(contains_ignoring_case("x\0RB"sv, "rb"));
}

TEST(AsciiCase, APartIsFoundAnywhere) {
  EXPECT_TRUE(contains_ignoring_case("1920x1080 (Preferred)*", "(preferred)"));
  EXPECT_TRUE(contains_ignoring_case("rb", "RB"));
  EXPECT_FALSE(contains_ignoring_case("R B", "RB"));
  EXPECT_FALSE(contains_ignoring_case("R", "RB"));
}
