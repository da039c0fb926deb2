#include "zyl/event_loop.h"

#include <gtest/gtest.h>

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
