#include "app/published_resolution.h"

#include <gtest/gtest.h>

namespace {

using vgn_control::leadingResolution;
using vgn_control::publishedResolution;

QString published(const char* properties) { return publishedResolution(leadingResolution(properties)); }

TEST(LeadingResolution, IsTheSizeWithoutWhatFollows) {
  EXPECT_EQ(leadingResolution("3840x2160@60"), "3840x2160");
  EXPECT_EQ(leadingResolution("1920x1080p60"), "1920x1080");
}

TEST(LeadingResolution, IsEmptyForATextThatBeginsOtherwise) {
  EXPECT_EQ(leadingResolution(""), "");
  EXPECT_EQ(leadingResolution("mode 1920x1080"), "");
  EXPECT_EQ(leadingResolution("1920X1080"), "");
  EXPECT_EQ(leadingResolution("-1920x1080"), "");
}

TEST(PublishedResolution, StaysUpToFullHd) {
  EXPECT_EQ(published("1920x1080p60"), "1920x1080");
  EXPECT_EQ(published("640x480@59.94"), "640x480");
}

TEST(PublishedResolution, IsHalvedAboveFullHd) {
  EXPECT_EQ(published("3840x2160@60"), "1920x1080");
  EXPECT_EQ(published("2560x1440@60"), "1280x720");
}

TEST(PublishedResolution, IsHalvedWhenOneSideAloneIsTooLong) {
  EXPECT_EQ(published("1920x1200@60"), "960x600");
  EXPECT_EQ(published("1920x1081@60"), "960x541");
}

TEST(PublishedResolution, IsRoundedUp) { EXPECT_EQ(published("1921x1080@60"), "961x540"); }

TEST(PublishedResolution, OfATextWithoutASizeIsEmpty) { EXPECT_EQ(published("no signal"), ""); }

TEST(PublishedResolution, OfNumbersTooLargeIsTheTextItself) {
  EXPECT_EQ(published("99999999999x1080@60"), "99999999999x1080");
}

TEST(PublishedResolution, OfTheLargestNumberDoesNotOverflow) {
  EXPECT_EQ(published("2147483647x2147483647"), "1073741824x1073741824");
}

}  // namespace
