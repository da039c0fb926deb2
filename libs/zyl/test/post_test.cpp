#include "zyl/post.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>
#include <vector>

#include "zyl/event_loop.h"

TEST(Post, RunsClosuresOnTheLoopThreadInTheOrderOfPosting) {
  zyl::event_loop_t loop;
  std::vector<int> order;
  std::thread::id where;
  std::thread poster([&] {
    for (int i = 0; i < 100; ++i) {
      zyl::post(loop.base(), [&order, i] { order.push_back(i); });
    }
    zyl::post(loop.base(), [&] {
      where = std::this_thread::get_id();
      loop.stop();
    });
  });
  loop.run();
  poster.join();
  ASSERT_EQ(order.size(), 100U);
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
  }
  EXPECT_EQ(where, std::this_thread::get_id());
}

TEST(Post, AClosureMayPostAnother) {
  zyl::event_loop_t loop;
  int depth = 0;
  zyl::post(loop.base(), [&] {
    ++depth;
    zyl::post(loop.base(), [&] {
      ++depth;
      loop.stop();
    });
  });
  loop.run();
  EXPECT_EQ(depth, 2);
}

TEST(Post, AClosureThatStillWaitsDiesWithTheLoopUnrun) {
  const auto held = std::make_shared<int>(0);
  {
    zyl::event_loop_t loop;
    zyl::post(loop.base(), [held] { ++*held; });
    EXPECT_EQ(held.use_count(), 2);
  }
  EXPECT_EQ(held.use_count(), 1);
  EXPECT_EQ(*held, 0);
}
