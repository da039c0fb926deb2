#include "zyl/sigc_timer.h"

#include <gtest/gtest.h>

#include "zyl/event_loop.h"
#include "zyl/exceptions.h"

TEST(SigcTimer, ArmWithoutABaseThrows) {
  zyl::sigc_timer_t timer(nullptr, 10, true);
  try {
    timer.arm();
    FAIL() << "armed a timer that has no event";
  } catch (const zyl::uninitialized_timer_exception_t& error) {
    EXPECT_STREQ(error.what(), "timer uninitialized");
  }
}

TEST(SigcTimer, OneShotIsNotRunningWhenItExpires) {
  zyl::event_loop_t loop;
  zyl::sigc_timer_t timer(loop.base(), 1, true);
  bool running_in_slot = true;
  timer.expired.connect([&] {
    running_in_slot = timer.running();
    loop.stop();
  });
  timer.arm();
  EXPECT_TRUE(timer.running());
  loop.run();
  EXPECT_FALSE(running_in_slot);
}

TEST(SigcTimer, RepeatingTimerIsArmedBeforeItEmits) {
  zyl::event_loop_t loop;
  zyl::sigc_timer_t timer(loop.base(), 1, false);
  int expiries = 0;
  timer.expired.connect([&] {
    EXPECT_TRUE(timer.running());
    if (++expiries == 3) {
      loop.stop();
    }
  });
  timer.arm();
  loop.run();
  EXPECT_EQ(expiries, 3);
}

TEST(SigcTimer, JitterOfZeroIsExactlyThePeriod) {
  zyl::event_loop_t loop;
  zyl::sigc_timer_t timer(loop.base(), 1'000'000, true);
  timer.set_jitter(0, 0);
  timer.arm();
  EXPECT_LE(timer.remaining_ms(), 1'000'000);
  EXPECT_GT(timer.remaining_ms(), 900'000);
}

TEST(SigcTimer, JitterAddsToThePeriod) {
  zyl::event_loop_t loop;
  zyl::sigc_timer_t timer(loop.base(), 1'000'000, true);
  timer.set_jitter(500'000, 500'000);
  timer.arm();
  EXPECT_GT(timer.remaining_ms(), 1'400'000);
}

TEST(SigcTimer, NegativePeriodNeverExpires) {
  zyl::event_loop_t loop;
  zyl::sigc_timer_t timer(loop.base(), -1, true);
  timer.arm();
  EXPECT_TRUE(timer.running());
  EXPECT_EQ(timer.remaining_ms(), 0);
}

TEST(SigcTimer, CancelledTimerHasNoTimeLeft) {
  zyl::event_loop_t loop;
  zyl::sigc_timer_t timer(loop.base(), 1000, true);
  timer.arm();
  timer.cancel();
  EXPECT_FALSE(timer.running());
  EXPECT_EQ(timer.remaining_ms(), 0);
}

TEST(SigcTimer, JitterStaysWithinItsBounds) {
  zyl::event_loop_t loop;
  zyl::sigc_timer_t timer(loop.base(), 1'000'000, true);
  timer.set_jitter(-400'000, 400'000);
  for (int i = 0; i < 100; ++i) {
    timer.arm();
    EXPECT_LE(timer.remaining_ms(), 1'400'000);
    EXPECT_GT(timer.remaining_ms(), 500'000);
  }
}

TEST(SigcTimer, JitterThatMakesTheDelayNegativeMeansNever) {
  zyl::event_loop_t loop;
  zyl::sigc_timer_t timer(loop.base(), 1000, true);
  timer.set_jitter(-2000, -2000);
  timer.arm();
  EXPECT_TRUE(timer.running());
  EXPECT_EQ(timer.remaining_ms(), 0);
}

TEST(SigcTimer, ArmedAgainStartsAnewWithThePeriodOfNow) {
  zyl::event_loop_t loop;
  zyl::sigc_timer_t timer(loop.base(), 1'000'000, true);
  timer.arm();
  timer.set_period(3'000'000);
  EXPECT_LE(timer.remaining_ms(), 1'000'000);
  timer.arm();
  EXPECT_GT(timer.remaining_ms(), 2'900'000);
}

TEST(SigcTimer, CancelledBeforeItsTurnDoesNotEmit) {
  zyl::event_loop_t loop;
  zyl::sigc_timer_t timer(loop.base(), 0, false);
  int expiries = 0;
  timer.expired.connect([&] { ++expiries; });
  timer.arm();
  timer.cancel();
  event_base_loop(loop.base(), EVLOOP_NONBLOCK);
  EXPECT_EQ(expiries, 0);
}

TEST(SigcTimer, ARepeatingTimerThatItsSlotCancelsStaysCancelled) {
  zyl::event_loop_t loop;
  zyl::sigc_timer_t timer(loop.base(), 1, false);
  timer.expired.connect([&] {
    timer.cancel();
    loop.stop();
  });
  timer.arm();
  loop.run();
  EXPECT_FALSE(timer.running());
  EXPECT_EQ(timer.remaining_ms(), 0);
}

TEST(SigcTimer, WithoutABaseItIsNeverRunningAndHasNoTimeLeft) {
  zyl::sigc_timer_t timer(nullptr, 10, true);
  timer.cancel();
  EXPECT_FALSE(timer.running());
  EXPECT_EQ(timer.remaining_ms(), 0);
}
