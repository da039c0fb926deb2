#include "zyl/deferred_call.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "zyl/event_loop.h"
#include "zyl/threaded_event_loop.h"

namespace {

struct traces_t {
  std::vector<int> called;
  std::vector<std::thread::id> threads;
  int destroyed = 0;
};

class traced_call_t : public zyl::deferred_call_t {
 public:
  traced_call_t(traces_t& shared_traces, int call_number, std::function<void()> call_work = {})
      : traces(shared_traces), number(call_number), work(std::move(call_work)) {}
  ~traced_call_t() override { ++traces.destroyed; }

  traced_call_t(const traced_call_t&) = delete;
  traced_call_t& operator=(const traced_call_t&) = delete;

  void operator()() override {
    traces.called.push_back(number);
    traces.threads.push_back(std::this_thread::get_id());
    if (work) {
      work();
    }
  }

 private:
  traces_t& traces;
  int number;
  std::function<void()> work;
};

template <typename... Arguments>
void post_traced(zyl::event_loop_t& loop, Arguments&&... arguments) {
  std::make_unique<traced_call_t>(std::forward<Arguments>(arguments)...).release()->post(loop);
}

}  // namespace

TEST(DeferredCall, RunsOnceOnTheLoopsThreadAndIsDestroyed) {
  traces_t traces;
  zyl::event_loop_t loop;
  std::thread poster([&] {
    post_traced(loop, traces, 1);
    post_traced(loop, traces, 2, [&loop] { loop.stop(); });
  });
  loop.run();
  poster.join();
  EXPECT_EQ(traces.called, (std::vector<int>{1, 2}));
  EXPECT_EQ(traces.threads, std::vector<std::thread::id>(2, std::this_thread::get_id()));
  EXPECT_EQ(traces.destroyed, 2);
}

TEST(DeferredCall, IsNotMadeBeforePostReturnsOnTheLoopsOwnThread) {
  traces_t traces;
  zyl::event_loop_t loop;
  post_traced(loop, traces, 1, [&] {
    post_traced(loop, traces, 2, [&loop] { loop.stop(); });
    EXPECT_EQ(traces.called, std::vector<int>{1});
  });
  loop.run();
  EXPECT_EQ(traces.called, (std::vector<int>{1, 2}));
}

TEST(DeferredCall, ThatStillWaitsDiesWithItsLoopUncalled) {
  traces_t traces;
  {
    zyl::event_loop_t loop;
    post_traced(loop, traces, 1);
    EXPECT_EQ(traces.destroyed, 0);
  }
  EXPECT_EQ(traces.destroyed, 1);
  EXPECT_TRUE(traces.called.empty());
}
