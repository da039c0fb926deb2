#include "zyl/clock.h"

#include <ctime>
#include <utility>

namespace zyl {
namespace {

std::function<int64_t()>& replaced_clock() {
  static std::function<int64_t()> clock;
  return clock;
}

int64_t monotonic_ms() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

}  // namespace

int64_t now_ms() {
  const int64_t now = replaced_clock() ? replaced_clock()() : monotonic_ms();
  return now != 0 ? now : 1;
}

void set_clock(std::function<int64_t()> clock) { replaced_clock() = std::move(clock); }

}  // namespace zyl
