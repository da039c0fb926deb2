#include "vgn/src/audio_clock.h"

#include <gtest/gtest.h>

namespace {

using vgn::audio_clock;
using vgn::audio_clock_t;

TEST(audio_clock, of_full_hd_is_the_pixel_clock) {
  EXPECT_EQ(audio_clock(48000, 148500), (audio_clock_t{6144, 148500, 148500}));
}

TEST(audio_clock, up_to_the_limit_uses_the_clock_itself) {
  EXPECT_EQ(audio_clock(48000, 340000), (audio_clock_t{6144, 340000, 340000}));
}

TEST(audio_clock, above_the_limit_uses_a_quarter_of_the_clock) {
  // 340001 / 4 is 85000 in whole kHz.
  EXPECT_EQ(audio_clock(48000, 340001), (audio_clock_t{6144, 340000, 85000}));
  EXPECT_EQ(audio_clock(48000, 594000), (audio_clock_t{6144, 594000, 148500}));
}

TEST(audio_clock, does_not_overflow_at_the_largest_values) {
  const uint32_t largest = 0xFFFFFFFF;
  const auto clock = audio_clock(192000, largest);
  EXPECT_EQ(clock.a, 24576U);
  EXPECT_EQ(clock.cts, largest / 4 * 4);
  EXPECT_EQ(clock.q, largest / 4);
}

TEST(audio_clock, truncates_a_rate_that_is_no_multiple_of_a_kilohertz) {
  // n = 5644800, a = 5644, m = 1000, cts = 5644 * 74250000 / 5644800.
  EXPECT_EQ(audio_clock(44100, 74250), (audio_clock_t{5644, 74239, 74250}));
}

TEST(audio_clock, without_a_rate_is_zero) { EXPECT_EQ(audio_clock(0, 148500), (audio_clock_t{0, 0, 0})); }

TEST(audio_clock, of_a_rate_below_one_count_has_no_quotient) {
  // n = 128 * 7 = 896, a = 0.
  EXPECT_EQ(audio_clock(7, 148500), (audio_clock_t{0, 0, 0}));
}

TEST(audio_clock, without_a_video_clock_is_zero_but_for_the_rate) {
  EXPECT_EQ(audio_clock(48000, 0), (audio_clock_t{6144, 0, 0}));
}

}  // namespace
