// A closure posted to an event loop: time and allocations of each, on the loop's own thread and from another.

#include <benchmark/benchmark.h>
#include <event2/event.h>

#include <atomic>
#include <string>
#include <thread>

#include "bench/support/allocation_count.h"
#include "bench/support/report.h"
#include "zyl/event_loop.h"
#include "zyl/post.h"

namespace {

/// Closures are posted in groups of so many; the figures are of one.
constexpr int group = 256;

void count_closures(benchmark::State& state, uint64_t allocations) {
  const auto closures = static_cast<double>(state.iterations()) * group;
  state.counters["ns/closure"] =
      benchmark::Counter(closures / 1e9, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
  state.counters["allocations/closure"] = static_cast<double>(allocations) / closures;
}

/// `post` gets a base and a counter, and has it raised by one from the loop. The loop is run after each group.
template <typename Post>
void on_same_thread(benchmark::State& state, Post post) {
  zyl::event_loop_t loop;
  std::atomic<int> ran{0};
  const uint64_t before = bench::allocation_count();
  for ([[maybe_unused]] auto step : state) {
    for (int i = 0; i < group; ++i) {
      post(loop.base(), ran);
    }
    for (ran = 0; ran < group;) {
      event_base_loop(loop.base(), EVLOOP_NONBLOCK);
    }
  }
  count_closures(state, bench::allocation_count() - before);
}

/// The loop runs on another thread, which is held until a group is posted: else the two would change places at every
/// closure or at none, as the scheduler likes. The hand-over of the group is in the time.
template <typename Post>
void on_other_thread(benchmark::State& state, Post post) {
  zyl::event_loop_t loop;
  std::thread runner([&loop] { loop.run(); });
  std::atomic<int> ran{0};
  std::atomic<bool> held{false};
  uint64_t allocations = 0;
  for ([[maybe_unused]] auto step : state) {
    ran = 0;
    held = true;
    zyl::post(loop.base(), [&held] { held.wait(true); });
    const uint64_t before = bench::allocation_count();
    for (int i = 0; i < group; ++i) {
      post(loop.base(), ran);
    }
    allocations += bench::allocation_count() - before;
    held = false;
    held.notify_one();
    for (int seen = ran; seen < group; seen = ran) {
      ran.wait(seen);
    }
  }
  loop.stop();
  runner.join();
  count_closures(state, allocations);
}

void raise(std::atomic<int>& ran) {
  if (++ran == group) {
    ran.notify_one();
  }
}

/// A closure that fits into its `std::function`.
void post_small(event_base* base, std::atomic<int>& ran) {
  zyl::post(base, [&ran] { raise(ran); });
}

/// One that carries a path and a value, as a change of a property does.
void post_property(event_base* base, std::atomic<int>& ran) {
  zyl::post(base, [&ran, path = std::string("/vgn_ui/hdmi1_current_screen"), value = std::string("live")] {
    benchmark::DoNotOptimize(path.data());
    benchmark::DoNotOptimize(value.data());
    raise(ran);
  });
}

/// What libevent itself offers, for a plain function.
void once(event_base* base, std::atomic<int>& ran) {
  const timeval now{};
  event_base_once(
      base, -1, EV_TIMEOUT,
      [](evutil_socket_t /*fd*/, short /*events*/, void* counter) { raise(*static_cast<std::atomic<int>*>(counter)); },
      &ran, &now);
}

}  // namespace

int main(int argc, char** argv) {
  benchmark::RegisterBenchmark("post/same_thread/small", on_same_thread<decltype(&post_small)>, &post_small);
  benchmark::RegisterBenchmark("post/same_thread/property", on_same_thread<decltype(&post_property)>, &post_property);
  benchmark::RegisterBenchmark("event_base_once/same_thread", on_same_thread<decltype(&once)>, &once);
  benchmark::RegisterBenchmark("post/other_thread/small", on_other_thread<decltype(&post_small)>, &post_small)
      ->UseRealTime();
  benchmark::RegisterBenchmark("post/other_thread/property", on_other_thread<decltype(&post_property)>, &post_property)
      ->UseRealTime();
  benchmark::RegisterBenchmark("event_base_once/other_thread", on_other_thread<decltype(&once)>, &once)->UseRealTime();
  return bench::run(argc, argv, {31, 0.02},
                    {{"post/same_thread/small", "event_base_once/same_thread"},
                     {"post/other_thread/small", "event_base_once/other_thread"}});
}
