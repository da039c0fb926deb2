#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace bench {

/// A benchmark to be told as a multiple of the time of another.
struct ratio_t {
  std::string what;
  std::string against;
  /// The most that the multiple shall be; 0 without a goal.
  double goal = 0;
};

/// How often each benchmark has its turn, and for how long at least. Many short rounds get through on a busy machine.
struct rounds_t {
  int count;
  double seconds;
};

/// The main of a benchmark program. Runs what `--benchmark_filter` selects in rounds of random order, so that a busy
/// machine troubles all alike, and prints for each the median, the lower quartile and the least of the times an
/// iteration takes, with its counters; then each ratio whose two benchmarks ran, of these three. A benchmark that asks
/// for real time is timed by the wall clock, any other by its own work. Other options of Google Benchmark are taken
/// too. The exit status.
int run(int argc, char** argv, const rounds_t& rounds, std::vector<ratio_t> ratios);

}  // namespace bench
