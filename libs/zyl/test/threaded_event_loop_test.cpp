#include "zyl/threaded_event_loop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <memory>
#include <thread>
#include <vector>

#include "test_support/log_capture.h"
#include "zyl/post.h"

namespace {

/// The thread that runs the loop; waits until it has run something.
std::thread::id thread_of(zyl::event_loop_t& loop) {
  std::promise<std::thread::id> told;
  zyl::post(loop.base(), [&told] { told.set_value(std::this_thread::get_id()); });
  return told.get_future().get();
}

/// Runs what waits on this thread, which libevent refuses while another one is in the loop.
bool runs_here(zyl::event_loop_t& loop) {
  std::thread::id where;
  zyl::post(loop.base(), [&where] { where = std::this_thread::get_id(); });
  return event_base_loop(loop.base(), EVLOOP_NONBLOCK) == 0 && where == std::this_thread::get_id();
}

}  // namespace

TEST(ThreadedEventLoop, RunsOnAThreadOfItsOwn) {
  zyl::threaded_event_loop_t loop;
  loop.start();
  EXPECT_NE(thread_of(loop), std::this_thread::get_id());
  EXPECT_EQ(thread_of(loop), thread_of(loop));
}

TEST(ThreadedEventLoop, NothingRunsOnceStopHasReturned) {
  zyl::threaded_event_loop_t loop;
  loop.start();
  thread_of(loop);
  loop.stop();
  EXPECT_TRUE(runs_here(loop));
}

TEST(ThreadedEventLoop, WhatWasPostedBeforeStartRuns) {
  zyl::threaded_event_loop_t loop;
  std::promise<void> ran;
  zyl::post(loop.base(), [&ran] { ran.set_value(); });
  loop.start();
  ran.get_future().wait();
  SUCCEED() << "it ran";
}

TEST(ThreadedEventLoop, MayBeStartedAgain) {
  zyl::threaded_event_loop_t loop;
  for (int i = 0; i < 3; ++i) {
    loop.start();
    thread_of(loop);
    loop.stop();
  }
}

TEST(ThreadedEventLoop, StartOnARunningLoopStopsItFirst) {
  zyl::threaded_event_loop_t loop;
  loop.start();
  bool first_ended = false;
  std::promise<void> entered;
  std::promise<void> proceed;
  zyl::post(loop.base(), [&] {
    entered.set_value();
    proceed.get_future().wait();
    first_ended = true;
  });
  entered.get_future().wait();
  std::thread starter([&loop] { loop.start(); });
  proceed.set_value();
  starter.join();
  EXPECT_TRUE(first_ended);
  thread_of(loop);
}

TEST(ThreadedEventLoop, StopWithoutAThreadIsNotKept) {
  zyl::threaded_event_loop_t loop;
  loop.stop();
  loop.stop();
  loop.start();
  thread_of(loop);
}

TEST(ThreadedEventLoop, ToldToStopOnItsOwnThreadEndsAfterTheCallback) {
  zyl::threaded_event_loop_t loop;
  loop.start();
  std::promise<void> told;
  zyl::post(loop.base(), [&] {
    loop.stop();
    told.set_value();
  });
  told.get_future().wait();
  loop.stop();
  loop.start();
  thread_of(loop);
}

TEST(ThreadedEventLoop, MayBeToldToStopAsAnEventLoop) {
  zyl::threaded_event_loop_t loop;
  zyl::event_loop_t& plain = loop;
  loop.start();
  thread_of(loop);
  plain.stop();
  EXPECT_TRUE(runs_here(loop));
}

TEST(ThreadedEventLoop, StopsAtWhateverMomentAfterStart) {
  zyl::threaded_event_loop_t loop;
  for (int i = 0; i < 200; ++i) {
    loop.start();
    if (i % 3 == 0) {
      std::this_thread::yield();
    }
    loop.stop();
    if (i % 2 == 0) {
      loop.stop();
    }
  }
}

TEST(ThreadedEventLoop, ManyThreadsMayStartAndStopIt) {
  zyl::threaded_event_loop_t loop;
  std::vector<std::thread> others;
  for (int i = 0; i < 4; ++i) {
    others.emplace_back([&loop, i] {
      for (int round = 0; round < 50; ++round) {
        if ((round + i) % 2 == 0) {
          loop.start();
        } else {
          loop.stop();
        }
      }
    });
  }
  for (auto& other : others) {
    other.join();
  }
  loop.start();
  thread_of(loop);
}

TEST(ThreadedEventLoop, EndsWithItsObjectAndDropsWhatWaits) {
  const auto held = std::make_shared<int>();
  {
    zyl::threaded_event_loop_t loop;
    loop.start();
    thread_of(loop);
    loop.stop();
    zyl::post(loop.base(), [held] { ++*held; });
    EXPECT_EQ(held.use_count(), 2);
  }
  {
    zyl::threaded_event_loop_t loop;
    loop.start();
  }
  EXPECT_EQ(held.use_count(), 1);
  EXPECT_EQ(*held, 0);
}

TEST(ThreadedEventLoop, ALoopThatLibeventRefusesToRunIsToldOnceAndEndsItsThread) {
  const test_support::log_capture_t log("zyl_event");
  zyl::threaded_event_loop_t loop;
  const auto failures = [&log] {
    const auto lines = log.lines();
    return std::count(lines.begin(), lines.end(), "event loop failed: -1");
  };
  zyl::post(loop.base(), [&] {
    loop.start();  // while this thread is in the loop
    while (failures() == 0) {
      std::this_thread::yield();
    }
    loop.stop();
  });
  event_base_loop(loop.base(), EVLOOP_NONBLOCK);
  EXPECT_EQ(failures(), 1);
  loop.start();
  thread_of(loop);
}
