#include "zyl/post.h"

#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <memory>
#include <numeric>
#include <thread>
#include <vector>

#include "zyl/event_loop.h"
#include "zyl/exceptions.h"

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

TEST(Post, TenThousandClosuresOfEightThreadsArriveInTheOrderOfEachThread) {
  constexpr std::size_t posters = 8;
  constexpr int each = 1250;
  zyl::event_loop_t loop;
  std::array<std::vector<int>, posters> arrived;
  std::size_t total = 0;
  std::vector<std::thread> threads;
  for (std::size_t poster = 0; poster < posters; ++poster) {
    threads.emplace_back([&, poster] {
      for (int i = 0; i < each; ++i) {
        zyl::post(loop.base(), [&, poster, i] {
          arrived[poster].push_back(i);
          if (++total == posters * each) {
            loop.stop();
          }
        });
      }
    });
  }
  loop.run();
  for (auto& thread : threads) {
    thread.join();
  }
  std::vector<int> in_order(each);
  std::iota(in_order.begin(), in_order.end(), 0);
  for (const auto& of_one : arrived) {
    EXPECT_EQ(of_one, in_order);
  }
}

TEST(Post, DroppedClosuresAreDestroyedAndTheLoopGoesOn) {
  zyl::event_loop_t loop;
  const auto held = std::make_shared<int>(0);
  zyl::post(loop.base(), [held] { ++*held; });
  zyl::post(loop.base(), [held] { ++*held; });
  zyl::drop_posts(loop.base());
  EXPECT_EQ(held.use_count(), 1);
  zyl::post(loop.base(), [&loop] { loop.stop(); });
  loop.run();
  EXPECT_EQ(*held, 0);
}

TEST(Post, WhatADroppedClosurePostsAtItsEndIsDroppedToo) {
  const auto held = std::make_shared<int>(0);
  zyl::event_loop_t loop;
  const auto posts_at_its_end = [&loop](std::shared_ptr<int> kept) {
    return std::shared_ptr<void>(nullptr, [&loop, kept](void*) { zyl::post(loop.base(), [kept] { ++*kept; }); });
  };
  zyl::post(loop.base(), [end = posts_at_its_end(held)] {});
  EXPECT_EQ(held.use_count(), 2);
  zyl::drop_posts(loop.base());
  EXPECT_EQ(held.use_count(), 1);
  EXPECT_EQ(*held, 0);
}

TEST(Post, WithoutABaseIsRefusedAndTheClosureDestroyed) {
  const auto held = std::make_shared<int>(0);
  EXPECT_THROW(zyl::post(nullptr, [held] { ++*held; }), zyl::exception_t);
  EXPECT_EQ(held.use_count(), 1);
}
