#include "zyl/clock.h"

#include <gtest/gtest.h>

TEST(Clock, TellsTheTimeOfTheClockThatATestHasSet) {
  zyl::set_clock([] { return int64_t{1234}; });
  EXPECT_EQ(zyl::now_ms(), 1234);
  zyl::set_clock({});
}

TEST(Clock, NeverTellsZeroBecauseZeroMeansNotArmed) {
  zyl::set_clock([] { return int64_t{0}; });
  EXPECT_NE(zyl::now_ms(), 0);
  zyl::set_clock({});
}

TEST(Clock, RealClockNeverRunsBackwards) {
  const int64_t before = zyl::now_ms();
  EXPECT_GE(zyl::now_ms(), before);
}
