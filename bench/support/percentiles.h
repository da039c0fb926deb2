#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <vector>

#include "bench/support/allocation_count.h"

namespace bench {

/// Runs `work` once an iteration and counts what one run takes: the median and the 99th percentile in nanoseconds, and
/// the allocations. Looking at the clock is in the time: some 50 ns, too much for works below a microsecond.
template <typename Work>
void count_each(benchmark::State& state, Work work) {
  using clock_t = std::chrono::steady_clock;
  std::vector<double> times(static_cast<std::size_t>(state.max_iterations));
  std::size_t runs = 0;
  const uint64_t before = allocation_count();
  for ([[maybe_unused]] auto step : state) {
    const auto start = clock_t::now();
    work();
    times[runs++] = std::chrono::duration<double, std::nano>(clock_t::now() - start).count();
  }
  const uint64_t allocations = allocation_count() - before;
  const auto percentile = [&](std::size_t percent) {
    const auto place = times.begin() + static_cast<std::ptrdiff_t>((runs - 1) * percent / 100);
    std::nth_element(times.begin(), place, times.begin() + static_cast<std::ptrdiff_t>(runs));
    return *place;
  };
  state.counters["p50_ns"] = percentile(50);
  state.counters["p99_ns"] = percentile(99);
  state.counters["allocations"] = static_cast<double>(allocations) / static_cast<double>(runs);
}

/// Runs `work` once an iteration and counts its allocations.
template <typename Work>
void count_allocations(benchmark::State& state, Work work) {
  const uint64_t before = allocation_count();
  for ([[maybe_unused]] auto step : state) {
    work();
  }
  const auto allocations = static_cast<double>(allocation_count() - before);
  state.counters["allocations"] = allocations / static_cast<double>(state.iterations());
}

}  // namespace bench
