#pragma once

#include <event2/event.h>

#include <chrono>
#include <functional>

namespace test_support {

/// Turns the loop until the condition holds. False if it still does not after 20 seconds, which only a fault takes.
inline bool loop_until(event_base* base, const std::function<bool()>& condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) {
      return false;
    }
    const timeval turn{0, 10'000};
    event_base_loopexit(base, &turn);
    event_base_loop(base, EVLOOP_ONCE | EVLOOP_NO_EXIT_ON_EMPTY);
  }
  return true;
}

}  // namespace test_support
