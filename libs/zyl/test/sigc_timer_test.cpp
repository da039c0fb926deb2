#include "zyl/sigc_timer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <limits>
#include <set>
#include <thread>

#include "test_support/loop_until.h"
#include "zyl/event_loop.h"
#include "zyl/exceptions.h"

using zyl::jittered_delay_ms;

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
  int64_t left_ms = 0;
  timer.expired.connect([&] {
    left_ms = timer.remaining_ms();
    loop.stop();
  });
  timer.arm();
  timer.set_period(1'000'000);
  loop.run();
  EXPECT_GT(left_ms, 0);
}

TEST(SigcTimer, RepeatingTimerExpiresAgainAndAgain) {
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

TEST(SigcTimer, AnotherThreadMayCancelItWhileASlotRuns) {
  zyl::event_loop_t loop;
  zyl::sigc_timer_t timer(loop.base(), 0, false);
  int expiries = 0;
  timer.expired.connect([&] {
    ++expiries;
    std::thread([&timer] { timer.cancel(); }).join();
  });
  timer.arm();
  EXPECT_TRUE(test_support::loop_until(loop.base(), [&] { return expiries == 1; }));
  EXPECT_FALSE(timer.running());
  event_base_loop(loop.base(), EVLOOP_NONBLOCK);
  EXPECT_EQ(expiries, 1);
}

TEST(SigcTimer, CancelledByAnotherThreadAtWhateverMomentItStaysCancelled) {
  zyl::event_loop_t loop;
  zyl::sigc_timer_t timer(loop.base(), 0, false);
  int expiries = 0;
  timer.expired.connect([&] { ++expiries; });
  for (int round = 0; round < 300; ++round) {
    timer.arm();
    std::atomic<bool> cancelled = false;
    std::thread other([&] {
      timer.cancel();
      cancelled = true;
    });
    while (!cancelled) {
      event_base_loop(loop.base(), EVLOOP_NONBLOCK);
    }
    other.join();
    EXPECT_FALSE(timer.running());
    const int before = expiries;
    event_base_loop(loop.base(), EVLOOP_NONBLOCK);
    EXPECT_EQ(expiries, before);
    EXPECT_EQ(event_base_get_num_events(loop.base(), EVENT_BASE_COUNT_ACTIVE), 0);
  }
}

TEST(JitteredDelay, OfZeroIsExactlyThePeriod) {
  for (const int64_t random : {0, 1, 2, 12'345, std::numeric_limits<int32_t>::max()}) {
    EXPECT_EQ(jittered_delay_ms(1000, 0, 0, random), 1000);
  }
}

TEST(JitteredDelay, ReachesBothBoundsAndAllBetween) {
  std::set<int64_t> delays;
  for (int64_t random = 0; random < 70; ++random) {
    delays.insert(jittered_delay_ms(1000, -3, 3, random));
  }
  EXPECT_EQ(delays, (std::set<int64_t>{997, 998, 999, 1000, 1001, 1002, 1003}));
  EXPECT_EQ(jittered_delay_ms(1000, -3, 3, 0), 997);
  EXPECT_EQ(jittered_delay_ms(1000, -3, 3, 6), 1003);
  EXPECT_EQ(jittered_delay_ms(1000, -3, 3, 7), 997);
}

TEST(JitteredDelay, DoesNotOverflow) {
  constexpr int32_t lowest = std::numeric_limits<int32_t>::min();
  constexpr int32_t highest = std::numeric_limits<int32_t>::max();
  EXPECT_EQ(jittered_delay_ms(highest, lowest, highest, 0xffffffffLL), 2LL * highest);
  EXPECT_EQ(jittered_delay_ms(highest, highest, highest, highest), 2LL * highest);
  EXPECT_EQ(jittered_delay_ms(lowest, lowest, highest, 0), 2LL * lowest);
}

TEST(JitteredDelay, AnUpperBoundBelowTheLowerCountsAsTheLower) {
  EXPECT_EQ(jittered_delay_ms(1000, 5, 4, 17), 1005);
  EXPECT_EQ(jittered_delay_ms(1000, 5, -5, 17), 1005);
}
