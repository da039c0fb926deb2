#include "zyl/event_loop.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "zyl/post.h"

TEST(EventLoop, StopBeforeRunIsKept) {
  zyl::event_loop_t loop;
  loop.stop();
  loop.run();
  SUCCEED() << "run returned";
}

TEST(EventLoop, RunsWithoutAnyEventUntilStoppedFromAnotherThread) {
  zyl::event_loop_t loop;
  bool ran = false;
  std::thread other([&] {
    zyl::post(loop.base(), [&] { ran = true; });
    zyl::post(loop.base(), [&] { loop.stop(); });
  });
  loop.run();
  other.join();
  EXPECT_TRUE(ran);
}

TEST(EventLoop, StopTwiceBeforeRunEndsItOnce) {
  zyl::event_loop_t loop;
  loop.stop();
  loop.stop();
  loop.run();
  SUCCEED() << "run returned";
}

TEST(EventLoop, StopFromAnotherThreadEndsItAtWhateverMoment) {
  for (int round = 0; round < 300; ++round) {
    zyl::event_loop_t loop;
    std::atomic<bool> go = false;
    std::thread other([&] {
      while (!go) {
        std::this_thread::yield();
      }
      for (int pause = 0; pause < round % 5; ++pause) {
        std::this_thread::yield();
      }
      loop.stop();
      if (round % 2 == 0) {
        loop.stop();
      }
    });
    go = true;
    loop.run();
    other.join();
  }
}

TEST(EventLoop, StopWhileItRunsLetsTheCallbacksOfTheTurnEnd) {
  zyl::event_loop_t loop;
  int ran = 0;
  zyl::post(loop.base(), [&] {
    ++ran;
    std::thread(&zyl::event_loop_t::stop, &loop).join();
    std::thread(&zyl::event_loop_t::stop, &loop).join();
    ++ran;
  });
  zyl::post(loop.base(), [&] { ++ran; });
  loop.run();
  EXPECT_EQ(ran, 3);
}

TEST(EventLoop, MayEndWithoutEverHavingRun) {
  zyl::event_loop_t stopped;
  stopped.stop();
  const zyl::event_loop_t untouched;
  SUCCEED() << "both are destroyed";
}
