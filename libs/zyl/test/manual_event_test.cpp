#include "zyl/manual_event.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

#include "test_support/loop_until.h"
#include "zyl/event_loop.h"
#include "zyl/exceptions.h"
#include "zyl/post.h"

namespace {

/// One turn of the loop, in which everything that is due happens.
void turn(zyl::event_loop_t& loop) { event_base_loop(loop.base(), EVLOOP_NONBLOCK); }

}  // namespace

TEST(ManualEvent, EmitsOnTheLoopsThreadWhenAnotherActivatesIt) {
  zyl::event_loop_t loop;
  zyl::manual_event_t event(loop.base());
  std::thread::id where;
  event.activated.connect([&] {
    where = std::this_thread::get_id();
    loop.stop();
  });
  std::thread other([&event] { event.activate(); });
  loop.run();
  other.join();
  EXPECT_EQ(where, std::this_thread::get_id());
}

TEST(ManualEvent, DoesNothingUnlessActivated) {
  zyl::event_loop_t loop;
  zyl::manual_event_t event(loop.base());
  int emissions = 0;
  event.activated.connect([&] { ++emissions; });
  turn(loop);
  EXPECT_EQ(emissions, 0);
}

TEST(ManualEvent, IsAddedForGood) {
  zyl::event_loop_t loop;
  zyl::manual_event_t event(loop.base());
  int emissions = 0;
  event.activated.connect([&] { ++emissions; });
  for (int i = 1; i <= 3; ++i) {
    event.activate();
    turn(loop);
    EXPECT_EQ(emissions, i);
  }
}

TEST(ManualEvent, ActivationsBeforeTheLoopsTurnAreOne) {
  zyl::event_loop_t loop;
  zyl::manual_event_t event(loop.base());
  int emissions = 0;
  event.activated.connect([&] { ++emissions; });
  event.activate();
  event.activate();
  turn(loop);
  turn(loop);
  EXPECT_EQ(emissions, 1);
}

TEST(ManualEvent, ASlotConnectedDuringEmissionWaitsForTheNext) {
  zyl::event_loop_t loop;
  zyl::manual_event_t event(loop.base());
  int early = 0;
  int late = 0;
  event.activated.connect([&] {
    if (++early == 1) {
      event.activated.connect([&] { ++late; });
    }
  });
  event.activate();
  turn(loop);
  EXPECT_EQ(late, 0);
  event.activate();
  turn(loop);
  EXPECT_EQ(late, 1);
  EXPECT_EQ(early, 2);
}

TEST(ManualEvent, ASlotMayActivateItAgain) {
  zyl::event_loop_t loop;
  zyl::manual_event_t event(loop.base());
  int emissions = 0;
  event.activated.connect([&] {
    if (++emissions == 3) {
      loop.stop();
    } else {
      event.activate();
    }
  });
  event.activate();
  loop.run();
  EXPECT_EQ(emissions, 3);
}

TEST(ManualEvent, ASlotMayDestroyItAndTheOthersAreStillCalled) {
  zyl::event_loop_t loop;
  auto event = std::make_unique<zyl::manual_event_t>(loop.base());
  int after = 0;
  event->activated.connect([&] { event.reset(); });
  event->activated.connect([&] { ++after; });
  event->activate();
  turn(loop);
  EXPECT_EQ(event, nullptr);
  EXPECT_EQ(after, 1);
}

TEST(ManualEvent, EveryActivationOfManyThreadsIsFollowedByAnEmission) {
  zyl::event_loop_t loop;
  zyl::manual_event_t event(loop.base());
  std::atomic<int> activated = 0;
  int seen = 0;
  event.activated.connect([&] { seen = activated; });
  std::vector<std::thread> others;
  for (int i = 0; i < 4; ++i) {
    others.emplace_back([&] {
      for (int count = 0; count < 500; ++count) {
        ++activated;
        event.activate();
      }
    });
  }
  EXPECT_TRUE(test_support::loop_until(loop.base(), [&] { return seen == 2000; }));
  for (auto& other : others) {
    other.join();
  }
}

TEST(ManualEvent, WithoutABaseIsRefused) { EXPECT_THROW(zyl::manual_event_t(nullptr), zyl::exception_t); }
