#include "zyl/self_deleting_timer.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <thread>
#include <utility>

#include "zyl/event_loop.h"
#include "zyl/simple_timer.h"

using zyl::self_deleting_timer_t;

namespace {

class counting_callback_t : public self_deleting_timer_t::callback_t {
 public:
  counting_callback_t(int& shared_calls, std::shared_ptr<int> held_token)
      : calls(shared_calls), token(std::move(held_token)) {}
  bool operator()() override { return ++calls < 3; }

 private:
  int& calls;
  std::shared_ptr<int> token;
};

/// Turns the loop without adding anything to it.
void turn_until(const zyl::event_loop_t& loop, const std::function<bool()>& condition) {
  while (!condition()) {
    event_base_loop(loop.base(), EVLOOP_ONCE);
  }
}

int timers_of(const zyl::event_loop_t& loop) { return event_base_get_num_events(loop.base(), EVENT_BASE_COUNT_ADDED); }

}  // namespace

TEST(SelfDeletingTimer, GoesOnWhileItsCallbackSaysSoAndNeverFiresAgainAfterwards) {
  zyl::event_loop_t loop;
  const int others = timers_of(loop);
  int calls = 0;
  self_deleting_timer_t::start(loop.base(), 1, [&calls] { return ++calls < 3; });
  EXPECT_EQ(timers_of(loop), others + 1);
  turn_until(loop, [&] { return calls == 3; });
  EXPECT_EQ(timers_of(loop), others) << "its event is still in the loop";

  // Time for many more intervals goes by before this one comes.
  zyl::simple_timer_t later;
  bool ended = false;
  later.init(loop.base(), [&ended] { ended = true; });
  later.arm(20);
  turn_until(loop, [&] { return ended; });
  EXPECT_EQ(calls, 3);
}

TEST(SelfDeletingTimer, ACallbackThatSaysNoAtOnceIsCalledOnce) {
  zyl::event_loop_t loop;
  const int others = timers_of(loop);
  int calls = 0;
  self_deleting_timer_t::start(loop.base(), 1, [&calls] {
    ++calls;
    return false;
  });
  turn_until(loop, [&] { return calls > 0; });
  EXPECT_EQ(timers_of(loop), others);
  EXPECT_EQ(calls, 1);
}

TEST(SelfDeletingTimer, ACallbackObjectIsDestroyedWithIt) {
  zyl::event_loop_t loop;
  const auto token = std::make_shared<int>();
  int calls = 0;
  self_deleting_timer_t::start(loop.base(), 1, std::make_unique<counting_callback_t>(calls, token));
  EXPECT_EQ(token.use_count(), 2);
  turn_until(loop, [&] { return token.use_count() == 1; });
  EXPECT_EQ(calls, 3);
}

TEST(SelfDeletingTimer, AnIntervalBelowOneMillisecondRepeatsToo) {
  zyl::event_loop_t loop;
  for (const int32_t interval : {0, -1000}) {
    int calls = 0;
    self_deleting_timer_t::start(loop.base(), interval, [&calls] { return ++calls < 3; });
    turn_until(loop, [&] { return calls == 3; });
    EXPECT_EQ(calls, 3) << interval;
  }
}

TEST(SelfDeletingTimer, MayBeStartedOnAnotherThread) {
  zyl::event_loop_t loop;
  std::thread::id where;
  std::thread other([&] {
    self_deleting_timer_t::start(loop.base(), 1, [&] {
      where = std::this_thread::get_id();
      loop.stop();
      return false;
    });
  });
  loop.run();
  other.join();
  EXPECT_EQ(where, std::this_thread::get_id());
}

TEST(SelfDeletingTimer, ThatStillRunsDiesWithItsLoop) {
  const auto token = std::make_shared<int>();
  {
    zyl::event_loop_t loop;
    self_deleting_timer_t::start(loop.base(), 1'000'000, [token] { return true; });
    EXPECT_EQ(token.use_count(), 2);
  }
  EXPECT_EQ(token.use_count(), 1);
}
