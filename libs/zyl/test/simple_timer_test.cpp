#include "zyl/simple_timer.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "test_support/loop_until.h"
#include "zyl/event_loop.h"
#include "zyl/exceptions.h"

namespace {

std::string failure_of(const std::function<void()>& use) {
  try {
    use();
    return "";
  } catch (const zyl::uninitialized_timer_exception_t& error) {
    return error.what();
  }
}

class SimpleTimer : public testing::Test {
 protected:
  SimpleTimer() {
    timer.init(loop.base(), [this] { ++calls; });
  }

  bool turns_until(const std::function<bool()>& condition) { return test_support::loop_until(loop.base(), condition); }

  zyl::event_loop_t loop;
  zyl::simple_timer_t timer;
  int calls = 0;
};

}  // namespace

TEST(SimpleTimerAlone, CannotBeUsedBeforeInit) {
  zyl::simple_timer_t timer;
  EXPECT_EQ(failure_of([&] { timer.arm(10); }), "timer uninitialized");
  EXPECT_EQ(failure_of([&] { timer.activate(); }), "timer uninitialized");
  EXPECT_EQ(failure_of([&] { timer.cancel(); }), "timer uninitialized");
  EXPECT_EQ(timer.remaining_ms(), 0);
}

TEST_F(SimpleTimer, CallsOnceWhenItIsArmed) {
  timer.arm(1);
  EXPECT_TRUE(turns_until([&] { return calls == 1; }));
  EXPECT_EQ(event_base_loop(loop.base(), EVLOOP_NONBLOCK), 0);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(timer.remaining_ms(), 0);
}

TEST_F(SimpleTimer, MayBeArmedAgainFromItsCallback) {
  timer.init(loop.base(), [this] {
    if (++calls < 3) {
      timer.arm(1);
    }
  });
  timer.arm(0);
  EXPECT_TRUE(turns_until([&] { return calls == 3; }));
}

TEST_F(SimpleTimer, ArmedAnewTheFirstTimeNoLongerCounts) {
  timer.arm(1);
  timer.arm(1'000'000);
  EXPECT_GT(timer.remaining_ms(), 900'000);
  timer.arm(1);
  EXPECT_TRUE(turns_until([&] { return calls == 1; }));
}

TEST_F(SimpleTimer, ActivatedCallsOnTheNextTurnAndNotAgain) {
  timer.arm(1'000'000);
  timer.activate();
  EXPECT_EQ(calls, 0);
  event_base_loop(loop.base(), EVLOOP_NONBLOCK);
  EXPECT_EQ(calls, 1);
  EXPECT_EQ(timer.remaining_ms(), 0);
}

TEST_F(SimpleTimer, ActivatedWithoutBeingArmedHasNoTimeLeft) {
  timer.activate();
  EXPECT_EQ(timer.remaining_ms(), 0);
  event_base_loop(loop.base(), EVLOOP_NONBLOCK);
  EXPECT_EQ(calls, 1);
}

TEST_F(SimpleTimer, CancelledDoesNotCall) {
  timer.arm(0);
  timer.cancel();
  timer.activate();
  timer.cancel();
  event_base_loop(loop.base(), EVLOOP_NONBLOCK);
  EXPECT_EQ(calls, 0);
}

TEST_F(SimpleTimer, ANegativeIntervalNeverExpires) {
  timer.arm(1);
  timer.arm(-1);
  EXPECT_EQ(timer.remaining_ms(), 0);
  EXPECT_EQ(event_base_loop(loop.base(), EVLOOP_NONBLOCK), 0);
  EXPECT_EQ(calls, 0);
}

TEST_F(SimpleTimer, TellsTheTimeLeft) {
  EXPECT_EQ(timer.remaining_ms(), 0);
  timer.arm(1'000'500);
  EXPECT_LE(timer.remaining_ms(), 1'000'500);
  EXPECT_GT(timer.remaining_ms(), 900'000);
  timer.cancel();
  EXPECT_EQ(timer.remaining_ms(), 0);
}

TEST_F(SimpleTimer, InitAgainForgetsThePendingTimeoutAndTheCallback) {
  timer.arm(0);
  int others = 0;
  timer.init(loop.base(), [&others] { ++others; });
  event_base_loop(loop.base(), EVLOOP_NONBLOCK);
  EXPECT_EQ(calls + others, 0);
  timer.arm(0);
  EXPECT_TRUE(turns_until([&] { return others == 1; }));
  EXPECT_EQ(calls, 0);
}

TEST_F(SimpleTimer, InitFromItsCallbackLetsTheCallbackEndFirst) {
  const auto held = std::make_shared<int>(0);
  int others = 0;
  timer.init(loop.base(), [this, held, &others] {
    timer.init(loop.base(), [&others] { ++others; });
    ++*held;
    timer.arm(0);
  });
  timer.arm(0);
  EXPECT_TRUE(turns_until([&] { return others == 1; }));
  EXPECT_EQ(*held, 1);
  EXPECT_EQ(held.use_count(), 1);
}

TEST_F(SimpleTimer, ItsCallbackMayDestroyIt) {
  const auto held = std::make_shared<int>(0);
  auto own = std::make_unique<zyl::simple_timer_t>();
  own->init(loop.base(), [&own, held] {
    own.reset();
    ++*held;
  });
  own->arm(0);
  EXPECT_TRUE(turns_until([&] { return *held == 1; }));
  EXPECT_EQ(held.use_count(), 1);
}

TEST_F(SimpleTimer, InitWithoutABaseIsRefusedAndChangesNothing) {
  EXPECT_THROW(timer.init(nullptr, [] {}), zyl::exception_t);
  timer.activate();
  event_base_loop(loop.base(), EVLOOP_NONBLOCK);
  EXPECT_EQ(calls, 1);
}
