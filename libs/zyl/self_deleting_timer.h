#pragma once

#include <cstdint>
#include <functional>
#include <memory>

struct event_base;

namespace zyl {

/// A repeating timer that nobody holds: it lives in its loop until its callback has had enough.
class self_deleting_timer_t {
 public:
  /// What such a timer calls, on the loop's thread. True: again after the interval. False: the timer is over, and it
  /// and the callback are destroyed. Must not throw.
  class callback_t {
   public:
    callback_t() = default;
    virtual ~callback_t() = default;

    callback_t(const callback_t&) = delete;
    callback_t& operator=(const callback_t&) = delete;
    callback_t(callback_t&&) = delete;
    callback_t& operator=(callback_t&&) = delete;

    virtual bool operator()() = 0;
  };

  /// Calls `callback` every `interval_ms` milliseconds, at least 1, for the first time after one interval. A loop that
  /// ends before destroys it. Any thread; throws `std::bad_alloc`, and `exception_t` if `base` is null.
  static void start(event_base* base, int32_t interval_ms, std::unique_ptr<callback_t> callback);

  /// The same with a function, which must not throw or be empty.
  static void start(event_base* base, int32_t interval_ms, std::function<bool()> callback);
};

}  // namespace zyl
