#include "edid_lib/vid_resolution.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using edid_lib::timing_location_t;
using edid_lib::timing_type_t;
using edid_lib::vid_resolution_t;
using edid_lib::vid_timing_t;

namespace {

float nominal(float fps, timing_type_t type = timing_type_t::cta) {
  return vid_resolution_t(1920, 1080, type, timing_location_t::undefined, fps).nominal_fps();
}

vid_resolution_t mode(int32_t width, int32_t height, float fps) {
  return {width, height, timing_type_t::undefined, timing_location_t::undefined, fps};
}

/// Every field but size, rate and scan is what it is when nothing is told.
void expect_no_more_than_a_picture(const vid_resolution_t& made) {
  EXPECT_EQ(made.pixel_aspect_x, 1);
  EXPECT_EQ(made.pixel_aspect_y, 1);
  EXPECT_FALSE(made.reduced_blanking);
  EXPECT_FALSE(made.preferred);
  EXPECT_EQ(made.h_image_mm, 0U);
  EXPECT_EQ(made.v_image_mm, 0U);
  EXPECT_EQ(made.h_border, 0U);
  EXPECT_EQ(made.v_border, 0U);
  EXPECT_EQ(made.type, timing_type_t::undefined);
  EXPECT_EQ(made.location, timing_location_t::undefined);
  EXPECT_EQ(made.comment, "");
  EXPECT_FALSE(made.timing.known());
}

}  // namespace

TEST(VidResolution, ConstructorsSetWhatTheyAreToldAndNothingElse) {
  expect_no_more_than_a_picture(vid_resolution_t());
  expect_no_more_than_a_picture(vid_resolution_t(""));
  expect_no_more_than_a_picture(vid_resolution_t("1920x1080i@60"));
  expect_no_more_than_a_picture(vid_resolution_t(vid_timing_t{}));
  vid_resolution_t typed(1920, 1080, timing_type_t::cta, timing_location_t::cta_video_data_block, 60);
  EXPECT_EQ(typed.type, timing_type_t::cta);
  EXPECT_EQ(typed.location, timing_location_t::cta_video_data_block);
  EXPECT_FALSE(typed.interlaced);
  typed.type = {};
  typed.location = {};
  expect_no_more_than_a_picture(typed);
  vid_resolution_t timed(vid_timing_t{74250, 1920, 2008, 2052, 2200, 1080, 1084, 1094, 1125, 21});
  EXPECT_TRUE(timed.timing.known());
  timed.timing = {};
  expect_no_more_than_a_picture(timed);
}

TEST(VidResolution, WithoutATextThereIsNoPicture) {
  for (const vid_resolution_t& empty : {vid_resolution_t(), vid_resolution_t("")}) {
    EXPECT_EQ(empty.width, 0);
    EXPECT_EQ(empty.height, 0);
    EXPECT_EQ(empty.fps, 0);
    EXPECT_FALSE(empty.interlaced);
  }
}

TEST(VidResolution, OfATimingHasItsSizeAndItsFrameRate) {
  const vid_resolution_t made(vid_timing_t{148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5});
  EXPECT_EQ(made.width, 1920);
  EXPECT_EQ(made.height, 1080);
  EXPECT_FLOAT_EQ(made.fps, 60);
  EXPECT_FALSE(made.interlaced);
  EXPECT_EQ(made.timing.h_sync_start, 2008U);
}

TEST(VidResolution, OfAnInterlacedTimingHasTheRateOfItsFramesNotOfItsFields) {
  const vid_resolution_t made(vid_timing_t{74250, 1920, 2008, 2052, 2200, 1080, 1084, 1094, 1125, 21});
  EXPECT_TRUE(made.interlaced);
  EXPECT_FLOAT_EQ(made.fps, 30);
  EXPECT_EQ(made.key(), "1920x1080i@30");
}

TEST(VidResolution, OfATimingWithoutTotalsHasNoRate) {
  vid_timing_t timing{148500, 1920, 2008, 2052, 0, 1080, 1084, 1089, 1125, 5};
  EXPECT_EQ(vid_resolution_t(timing).fps, 0);
  timing.h_total = 2200;
  timing.v_total = 0;
  EXPECT_EQ(vid_resolution_t(timing).fps, 0);
}

TEST(VidResolution, OfATimingWithAClockThatDoesNotFitInHertzWrapsAt32Bits) {
  const vid_resolution_t made(vid_timing_t{4294968, 1000, 0, 0, 1000, 1000, 0, 0, 1000, 0});
  EXPECT_FLOAT_EQ(made.fps, 704.0F / 1000 / 1000);
}

TEST(VidResolution, LowestRateIs2398OrTheWhole24OfDmt) {
  EXPECT_EQ(nominal(23.9F), 23.98F);
  EXPECT_EQ(nominal(23.9F, timing_type_t::dmt), 24);
  EXPECT_EQ(nominal(0), 23.98F);
  EXPECT_EQ(nominal(-5, timing_type_t::established), 24);
}

TEST(VidResolution, RatesSnapToTheNearestStandardRate) {
  EXPECT_EQ(nominal(60.4F), 60);
  EXPECT_EQ(nominal(59.95F), 59.94F);
  EXPECT_EQ(nominal(59.98F), 60);
  EXPECT_EQ(nominal(23.985F), 23.98F);
  EXPECT_EQ(nominal(24.0F), 24);
}

TEST(VidResolution, ARateInTheMiddleOfTwoGoesUp) {
  EXPECT_EQ(nominal(63.5F), 67);
  EXPECT_EQ(nominal(63.4F), 60);
  EXPECT_EQ(nominal(36.5F), 43);
  EXPECT_EQ(nominal(180.0F), 200);
}

TEST(VidResolution, RatesThatAreNotInTheListGoByTheNearestThatIs) {
  EXPECT_EQ(nominal(100), 88);
  EXPECT_EQ(nominal(65), 67);
}

TEST(VidResolution, HighestRateIs240) {
  EXPECT_EQ(nominal(240), 240);
  EXPECT_EQ(nominal(1000), 240);
  EXPECT_EQ(nominal(std::numeric_limits<float>::infinity(), timing_type_t::dmt), 240);
}

TEST(VidResolution, EstablishedAndDmtRatesAreWhole) {
  EXPECT_EQ(nominal(59.94F, timing_type_t::dmt), 60);
  EXPECT_EQ(nominal(59.94F, timing_type_t::established), 60);
  EXPECT_EQ(nominal(59.94F, timing_type_t::hdmi), 59.94F);
  EXPECT_EQ(nominal(119.88F, timing_type_t::dmt), 120);
  EXPECT_EQ(nominal(29.97F, timing_type_t::cvt), 29.97F);
}

TEST(VidResolution, ARateThatIsNoNumberIsMinusOne) {
  EXPECT_EQ(nominal(std::nanf("")), -1);
  EXPECT_EQ(mode(640, 480, std::nanf("")).key(), "640x480@-1");
}

TEST(VidResolution, EqualsByWidthHeightAndRateTextAlone) {
  vid_resolution_t other(1920, 1080, timing_type_t::dmt, timing_location_t::standard_block, 60.3F);
  other.interlaced = true;
  other.preferred = true;
  other.pixel_aspect_x = 4;
  EXPECT_EQ(mode(1920, 1080, 60), other);
  EXPECT_NE(mode(1920, 1080, 60), mode(1920, 1081, 60));
  EXPECT_NE(mode(1920, 1080, 60), mode(1921, 1080, 60));
  EXPECT_NE(mode(1920, 1080, 60), mode(1920, 1080, 59.94F));
}

TEST(VidResolution, OrdersByWidthThenHeight) {
  EXPECT_GT(mode(1921, 1, 24), mode(1920, 1080, 60));
  EXPECT_GT(mode(1920, 1081, 24), mode(1920, 1080, 60));
  EXPECT_LT(mode(-1, 1080, 60), mode(0, 0, 60));
}

TEST(VidResolution, OrdersRatesAsTexts) {
  EXPECT_GT(mode(1920, 1080, 60), mode(1920, 1080, 120));
  EXPECT_LT(mode(1920, 1080, 120), mode(1920, 1080, 24));
  EXPECT_GT(mode(1920, 1080, 75), mode(1920, 1080, 60));
  EXPECT_LT(mode(1920, 1080, 59.94F), mode(1920, 1080, 60));
  EXPECT_LT(mode(1920, 1080, 24), mode(1920, 1080, 240));
}

TEST(VidResolution, PictureAspectTakesThePixelsIntoAccount) {
  EXPECT_TRUE(vid_resolution_t("720x480@59.94 8:9").is_4_3());
  EXPECT_TRUE(vid_resolution_t("720x480@59.94 32:27").is_16_9());
  EXPECT_TRUE(vid_resolution_t("1920x1080@60").is_16_9());
  EXPECT_FALSE(vid_resolution_t("1920x1080@60").is_4_3());
  EXPECT_FLOAT_EQ(vid_resolution_t("1920x1200@60").picture_aspect(), 1.6F);
}

TEST(VidResolution, AnAspectIsMetWithLessThanAThousandth) {
  EXPECT_TRUE(vid_resolution_t("1366x768@60").is_16_9());
  EXPECT_FALSE(vid_resolution_t("1360x768@60").is_16_9());
  EXPECT_TRUE(vid_resolution_t("1334x1000@60").is_4_3());
  EXPECT_FALSE(vid_resolution_t("1335x1000@60").is_4_3());
  EXPECT_TRUE(vid_resolution_t("1333x1000@60").is_4_3());
  EXPECT_FALSE(vid_resolution_t("1332x1000@60").is_4_3());
}

TEST(VidResolution, WithoutHeightOrWithoutPixelHeightHasNoAspect) {
  const vid_resolution_t flat = mode(1920, 0, 60);
  EXPECT_EQ(flat.picture_aspect(), 0);
  EXPECT_FALSE(flat.is_4_3());
  EXPECT_FALSE(flat.is_16_9());
  vid_resolution_t thin = mode(1920, 1080, 60);
  thin.pixel_aspect_y = 0;
  EXPECT_EQ(thin.picture_aspect(), 0);
}
