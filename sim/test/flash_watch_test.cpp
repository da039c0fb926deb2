#include "sim/flash_watch.h"

#include <gtest/gtest.h>

using sim::light_t;

namespace {

class FlashWatch : public testing::Test {
 protected:
  /// A program's flashing: `count` changes, the first one now, an interval between two.
  void flash(int count, int64_t interval_ms, uint32_t first = 255) {
    for (int i = 0; i < count; ++i) {
      now_ms += i == 0 ? 0 : interval_ms;
      watch.set(i % 2 == 0 ? first : 255 - first, now_ms);
    }
  }

  light_t light() const { return watch.light(now_ms); }

  sim::flash_watch_t watch;
  int64_t now_ms = 5'000'000;
};

}  // namespace

TEST_F(FlashWatch, ALevelIsSteady) {
  EXPECT_EQ(light(), light_t{});
  EXPECT_TRUE(watch.set(255, now_ms));
  EXPECT_EQ(light(), (light_t{255, 0}));
  EXPECT_FALSE(watch.set(255, now_ms + 500));
  EXPECT_EQ(watch.steady_at_ms(now_ms), std::nullopt);
}

TEST_F(FlashWatch, TheSecondRiseTellsThatItBlinks) {
  flash(2, 500);
  EXPECT_EQ(light(), light_t{});
  now_ms += 500;
  watch.set(255, now_ms);
  EXPECT_EQ(light(), (light_t{255, 1000}));
}

TEST_F(FlashWatch, TheDarkPhaseLooksLikeTheLitOne) {
  flash(4, 500);
  EXPECT_EQ(light(), (light_t{255, 1000}));
}

TEST_F(FlashWatch, ThePeriodFollowsTheLastTwoRises) {
  flash(5, 500);
  now_ms += 100;
  flash(4, 100, 0);
  EXPECT_EQ(light(), (light_t{255, 200}));
}

TEST_F(FlashWatch, ThePeriodIsRoundedToTenMilliseconds) {
  flash(3, 502);
  EXPECT_EQ(light(), (light_t{255, 1000}));
  flash(2, 503, 0);
  EXPECT_EQ(light(), (light_t{255, 500}));
}

TEST_F(FlashWatch, ItIsSteadyAgainAfterTwoPeriodsWithoutAChange) {
  flash(3, 1000);
  EXPECT_EQ(watch.steady_at_ms(now_ms), std::optional<int64_t>(now_ms + 4000));
  now_ms += 3999;
  EXPECT_EQ(light(), (light_t{255, 2000}));
  now_ms += 1;
  EXPECT_EQ(light(), (light_t{255, 0}));
  EXPECT_EQ(watch.steady_at_ms(now_ms), std::nullopt);
}

TEST_F(FlashWatch, AQuickOneIsGivenASecondAtLeast) {
  flash(4, 100);
  now_ms += 999;
  EXPECT_EQ(light(), (light_t{255, 200}));
  now_ms += 1;
  EXPECT_EQ(light(), light_t{});
}

TEST_F(FlashWatch, SettingTheSameLevelDoesNotProlongIt) {
  flash(4, 100);
  now_ms += 900;
  EXPECT_FALSE(watch.set(0, now_ms));
  now_ms += 100;
  EXPECT_EQ(light(), light_t{});
}

TEST_F(FlashWatch, ARiseAfterTheEndIsAFirstOne) {
  flash(4, 100);
  now_ms += 3000;
  watch.set(255, now_ms);
  EXPECT_EQ(light(), (light_t{255, 0}));
}

TEST_F(FlashWatch, TwoRisesFarApartAreNoBlinking) {
  flash(2, 100);
  now_ms += 5000;
  watch.set(255, now_ms);
  EXPECT_EQ(light(), (light_t{255, 0}));
}
