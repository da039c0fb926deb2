#include <gtest/gtest.h>

#include <limits>
#include <stdexcept>

#include "edid_lib/vid_resolution.h"
#include "test_support/comma_locale.h"

using edid_lib::vid_resolution_t;

namespace {

void expect_size(const vid_resolution_t& mode, int32_t width, int32_t height, float fps) {
  EXPECT_EQ(mode.width, width);
  EXPECT_EQ(mode.height, height);
  EXPECT_EQ(mode.fps, fps);
}

void expect_aspect(const vid_resolution_t& mode, float x, float y) {
  EXPECT_EQ(mode.pixel_aspect_x, x);
  EXPECT_EQ(mode.pixel_aspect_y, y);
}

std::string aspect_ratio(int32_t width, int32_t height, float x = 1, float y = 1) {
  vid_resolution_t mode;
  mode.width = width;
  mode.height = height;
  mode.pixel_aspect_x = x;
  mode.pixel_aspect_y = y;
  return mode.aspect_ratio();
}

}  // namespace

TEST(VidResolutionText, EmptyTextIsTheDefaultMode) {
  for (const char* text : {"", "   "}) {
    const vid_resolution_t mode{std::string_view(text)};
    expect_size(mode, 0, 0, 0);
    expect_aspect(mode, 1, 1);
  }
}

TEST(VidResolutionText, InterlacedModeParsesAndGivesTheSameKey) {
  const vid_resolution_t mode("1920x1080i@60");
  expect_size(mode, 1920, 1080, 60);
  EXPECT_TRUE(mode.interlaced);
  EXPECT_EQ(mode.key(), "1920x1080i@60");
}

TEST(VidResolutionText, TheFormForPeopleParsesToo) {
  expect_size(vid_resolution_t("1920x1080p60"), 1920, 1080, 60);
  EXPECT_FALSE(vid_resolution_t("1920x1080p60").interlaced);
  expect_size(vid_resolution_t("1920x1080i60"), 1920, 1080, 60);
  EXPECT_TRUE(vid_resolution_t("1920x1080i60").interlaced);
}

TEST(VidResolutionText, WithoutAnySeparatorTheFirstWordSetsNothing) {
  const vid_resolution_t mode("1920x1080 8:9");
  expect_size(mode, 0, 0, 0);
  expect_aspect(mode, 8, 9);
}

TEST(VidResolutionText, ASizeWithoutExactlyOneCrossIsNone) {
  expect_size(vid_resolution_t("720p60"), 0, 0, 60);
  expect_size(vid_resolution_t("1920x1080x3@60"), 0, 0, 60);
}

TEST(VidResolutionText, HalvesOfTheSizeAreWholeNumbersWithAnOptionalSign) {
  expect_size(vid_resolution_t("+640x-480@60"), 640, -480, 60);
}

TEST(VidResolutionText, AHalfThatIsNoWholeNumberThrows) {
  for (const char* text :
       {"1920abcx1080@60", "1920x@60", "x1080@60", "abcxdef@60", "19.5x1080@60", "+-4x3@60", "+x3@60"}) {
    EXPECT_THROW(vid_resolution_t{std::string_view(text)}, std::invalid_argument) << text;
  }
}

TEST(VidResolutionText, AHalfThatIsTooLargeThrows) {
  EXPECT_THROW(vid_resolution_t("2147483648x1@60"), std::out_of_range);
  expect_size(vid_resolution_t("2147483647x1@60"), std::numeric_limits<int32_t>::max(), 1, 60);
}

TEST(VidResolutionText, ARateThatDoesNotParseIsZero) {
  for (const char* text : {"640x480@", "640x480@abc", "640x480@1e99", "640x480@1e-44"}) {
    expect_size(vid_resolution_t{std::string_view(text)}, 640, 480, 0);
  }
}

TEST(VidResolutionText, ANumberInFrontOfOtherTextIsTheRate) {
  expect_size(vid_resolution_t("640x480@60Hz"), 640, 480, 60);
  expect_size(vid_resolution_t("640x480@59.94"), 640, 480, 59.94F);
}

TEST(VidResolutionText, BlanksSignsAndHexadecimalDigitsArePartOfARate) {
  expect_size(vid_resolution_t("640x480@\t60"), 640, 480, 60);
  expect_size(vid_resolution_t("640x480@+60"), 640, 480, 60);
  expect_size(vid_resolution_t("640x480@0x3C"), 640, 480, 60);
  expect_size(vid_resolution_t("640x480@inf"), 640, 480, std::numeric_limits<float>::infinity());
}

TEST(VidResolutionText, NumbersHaveADecimalPointInEveryLocale) {
  const test_support::comma_locale_t comma;
  const vid_resolution_t mode("640x480@59.94 1.5:2.5");
  expect_size(mode, 640, 480, 59.94F);
  expect_aspect(mode, 1.5F, 2.5F);
  EXPECT_EQ(mode.key(), "640x480@59.94 1.5:2.5");
  EXPECT_EQ(mode.to_string(), "640x480p59.94 4:5");
  expect_size(vid_resolution_t("640x480@59,94"), 640, 480, 59);
}

TEST(VidResolutionText, SuffixIsThePixelAspectOrTheMarkers) {
  expect_aspect(vid_resolution_t("720x480@59.94 8:9"), 8, 9);
  EXPECT_TRUE(vid_resolution_t("800x600@120 rb").reduced_blanking);
  EXPECT_TRUE(vid_resolution_t("800x600@60 (PREFERRED)").preferred);
}

TEST(VidResolutionText, ASuffixThatIsNoAspectMakesTheAspectOdd) {
  expect_aspect(vid_resolution_t("800x600@120 RB"), -1, 1);
  expect_aspect(vid_resolution_t("800x600@120 1:2:3"), -1, 1);
}

TEST(VidResolutionText, OnlyTheLastSuffixCounts) {
  const vid_resolution_t preferred("720x480@59.94 8:9 (preferred)");
  EXPECT_TRUE(preferred.preferred);
  expect_aspect(preferred, -1, 1);
  const vid_resolution_t aspect("720x480@59.94 RB (preferred)  8:9 ");
  EXPECT_FALSE(aspect.preferred);
  EXPECT_FALSE(aspect.reduced_blanking);
  expect_aspect(aspect, 8, 9);
}

TEST(VidResolutionText, ASideOfTheAspectThatIsNoNumberIsZero) {
  expect_aspect(vid_resolution_t("720x480@60 4:"), 4, 0);
  expect_aspect(vid_resolution_t("720x480@60 :"), 0, 0);
  expect_aspect(vid_resolution_t("720x480@60 a:3"), 0, 3);
}

TEST(VidResolutionText, KeyHasTheRateWithTwoDecimalsOrNone) {
  EXPECT_EQ(vid_resolution_t("640x480@59.94").key(), "640x480@59.94");
  EXPECT_EQ(vid_resolution_t("640x480@60.00").key(), "640x480@60");
  EXPECT_EQ(vid_resolution_t("640x480@23.976").key(), "640x480@23.98");
}

TEST(VidResolutionText, KeyHasTheAspectAsAStreamWritesIt) {
  EXPECT_EQ(vid_resolution_t("720x480@59.94 8:9").key(), "720x480@59.94 8:9");
  EXPECT_EQ(vid_resolution_t("1680x720@60 64:63").key(), "1680x720@60 64:63");
  EXPECT_EQ(vid_resolution_t("1680x720@60 1.5:1000000").key(), "1680x720@60 1.5:1e+06");
  EXPECT_EQ(vid_resolution_t("1680x720@60 1:1").key(), "1680x720@60");
}

TEST(VidResolutionText, KeyOfAParsedReducedBlankingModeHasTheOddAspect) {
  EXPECT_EQ(vid_resolution_t("1920x1080i@50 RB").key(), "1920x1080i@50 RB -1:1");
}

TEST(VidResolutionText, FormForPeopleHasScanPictureAspectAndComment) {
  EXPECT_EQ(vid_resolution_t("1920x1080@60").to_string(), "1920x1080p60");
  EXPECT_EQ(vid_resolution_t("1920x1080i@60").to_string(), "1920x1080i60");
  EXPECT_EQ(vid_resolution_t("720x480@59.94 8:9").to_string(), "720x480p59.94 4:3");
  vid_resolution_t mode("1280x800@60");
  mode.reduced_blanking = true;
  mode.comment = "of the built-in panel";
  EXPECT_EQ(mode.to_string(), "1280x800p60 RB of the built-in panel");
}

TEST(VidResolutionText, ListTellsWhatIsPreferred) {
  vid_resolution_t mode("1920x1080@60");
  EXPECT_EQ(mode.list_text(), "1920x1080p60");
  mode.preferred = true;
  EXPECT_EQ(mode.list_text(), "1920x1080p60 (preferred)");
}

TEST(VidResolutionText, AspectRatioIsReduced) {
  EXPECT_EQ(aspect_ratio(1920, 1080), "16:9");
  EXPECT_EQ(aspect_ratio(1024, 768), "4:3");
  EXPECT_EQ(aspect_ratio(720, 480, 32, 27), "16:9");
}

TEST(VidResolutionText, AspectRatioGoesByItsMarketName) {
  EXPECT_EQ(aspect_ratio(1280, 800), "16:10");
  EXPECT_EQ(aspect_ratio(2560, 1080), "21:9");
  EXPECT_EQ(aspect_ratio(1280, 720, 4, 3), "21:9");
}

TEST(VidResolutionText, AspectRatioKeepsTheSignOfAnOddPixelAspect) { EXPECT_EQ(aspect_ratio(640, 480, -1, 1), "-4:3"); }

TEST(VidResolutionText, AspectRatioWithoutHeightIsOneOrNothingToZero) {
  EXPECT_EQ(aspect_ratio(1920, 0), "1:0");
  EXPECT_EQ(aspect_ratio(0, 0), "0:0");
  EXPECT_EQ(aspect_ratio(0, 480), "0:1");
}

TEST(VidResolutionText, AspectRatioOfAbsurdNumbersIsStillText) {
  const float infinite = std::numeric_limits<float>::infinity();
  EXPECT_EQ(aspect_ratio(1920, 1080, infinite, infinite), "1:1");
  EXPECT_EQ(aspect_ratio(1920, 1080, std::numeric_limits<float>::quiet_NaN(), 1), "0:1");
  EXPECT_EQ(aspect_ratio(1920, 1080, -1e30F, 1e30F), "-1:1");
}
