#include "edid_lib/rate_alternative.h"

#include <gtest/gtest.h>

#include "edid_lib/timing_tables.h"

using namespace edid_lib;

namespace {

constexpr vid_timing_t full_hd = {148500, 1920, 2008, 2052, 2200, 1080, 1084, 1089, 1125, 5};

}  // namespace

TEST(RateAlternative, WithoutATimingChangesTheRateAlone) {
  const vid_resolution_t mode = rate_alternative(vid_resolution_t("720x480@60 8:9"));
  EXPECT_EQ(mode.key(), "720x480@59.94 8:9");
  EXPECT_FALSE(mode.timing.known());
  EXPECT_EQ(rate_alternative(vid_resolution_t("1920x1080@24")).key(), "1920x1080@23.98");
  EXPECT_EQ(rate_alternative(vid_resolution_t("1920x1080@30")).key(), "1920x1080@29.97");
  EXPECT_EQ(rate_alternative(vid_resolution_t("1920x1080@120")).key(), "1920x1080@119.88");
  EXPECT_EQ(rate_alternative(vid_resolution_t("1920x1080@240")).key(), "1920x1080@239.76");
}

TEST(RateAlternative, RatesThatAreNoMultipleOfSixHaveNoAlternative) {
  for (const char* key : {"1920x1080@59.94", "1920x1080@25", "1920x1080@50", "1920x1080@75", "1920x1080@23.98"}) {
    EXPECT_EQ(rate_alternative(vid_resolution_t{std::string_view(key)}).key(), key);
  }
}

TEST(RateAlternative, Of72StillGoesBy72) {
  const vid_resolution_t slower = rate_alternative(vid_resolution_t("800x600@72"));
  EXPECT_FLOAT_EQ(slower.fps, 71.928072F);
  EXPECT_EQ(slower.key(), "800x600@72");
  const vid_resolution_t timed(vid_timing_t{50000, 800, 856, 976, 1040, 600, 637, 643, 666, 5});
  EXPECT_EQ(rate_alternative(timed).timing.pixel_clock_khz, 49950U);
  EXPECT_EQ(rate_alternative(timed).key(), "800x600@72");
}

TEST(RateAlternative, OfADmtModeAt5994IsThatOf60) {
  vid_resolution_t mode("4096x2160@59.94");
  mode.type = timing_type_t::dmt;
  const vid_resolution_t slower = rate_alternative(mode);
  EXPECT_FLOAT_EQ(slower.fps, 59.940060F);
  EXPECT_EQ(slower.type, timing_type_t::dmt);
  EXPECT_EQ(slower.key(), "4096x2160@60");
  mode.timing = {556188, 4096, 4104, 4136, 4176, 2160, 2208, 2216, 2222, 9};
  EXPECT_EQ(rate_alternative(mode).timing.pixel_clock_khz, 555632U);
  EXPECT_EQ(rate_alternative(mode).key(), "4096x2160@59.94");
}

TEST(RateAlternative, WithATimingIsMadeAnewFromTheSlowerTiming) {
  vid_resolution_t mode(full_hd);
  mode.type = timing_type_t::cta;
  mode.location = timing_location_t::cta_video_data_block;
  mode.preferred = true;
  mode.pixel_aspect_x = 4;
  mode.pixel_aspect_y = 3;
  mode.reduced_blanking = true;
  const vid_resolution_t slower = rate_alternative(mode);
  EXPECT_EQ(slower.timing.pixel_clock_khz, 148351U);
  EXPECT_EQ(slower.key(), "1920x1080@59.94");
  EXPECT_EQ(slower.type, timing_type_t::undefined);
  EXPECT_EQ(slower.location, timing_location_t::undefined);
  EXPECT_FALSE(slower.preferred);
}

TEST(RateAlternative, IsReadyMadeInTheTables) {
  for (uint32_t vic = 1; vic <= 107; ++vic) {
    const vid_resolution_t made = rate_alternative(*cta_timings().named_mode(vic));
    const vid_resolution_t& ready = *cta_timings().alternative_mode(vic);
    EXPECT_EQ(ready.timing, made.timing) << vic;
    EXPECT_EQ(ready.key(), made.key()) << vic;
  }
  EXPECT_EQ(cta_timings().alternative_mode(0), nullptr);
  EXPECT_EQ(cta_timings().alternative_mode(108), nullptr);
}
