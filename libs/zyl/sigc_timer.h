#pragma once

#include <event2/event.h>
#include <sigc++/sigc++.h>

#include <cstdint>

#include "zyl/event_ptr.h"
#include "zyl/mutex.h"

namespace zyl {

/// A timer on an event loop with a signal for its expiry. Thread of the loop, construction included; `cancel` and
/// `running` may come from any thread.
///
/// A repeating timer is armed again before `expired` is emitted, so that the time its slots take does not stretch the
/// period; a one-shot timer is cancelled before. A slot must not destroy the timer, and must not throw.
class sigc_timer_t {
 public:
  /// `period_ms`: time until the first expiry and between expiries, in milliseconds; a negative period never expires.
  /// With a null `loop_base` it can do everything but be armed. Throws `std::bad_alloc`.
  sigc_timer_t(event_base* loop_base, int32_t period_ms, bool one_shot);
  ~sigc_timer_t() = default;

  sigc_timer_t(const sigc_timer_t&) = delete;
  sigc_timer_t& operator=(const sigc_timer_t&) = delete;
  sigc_timer_t(sigc_timer_t&&) = delete;
  sigc_timer_t& operator=(sigc_timer_t&&) = delete;

  /// Starts the timer, or starts it anew. Throws `uninitialized_timer_exception_t` on a timer made with a null base.
  void arm() ZYL_EXCLUDES(mutex);

  /// Stops the timer: no emission begins from now on. Nothing happens to one that is not running. Any thread; never
  /// waits, so that on a thread that is not the loop's an emission which has begun may still be going on afterwards.
  void cancel() ZYL_EXCLUDES(mutex);

  /// The period from the next `arm` on, in the range of the constructor's.
  void set_period(int32_t milliseconds) { period_ms = milliseconds; }

  /// Adds a random time of `min_ms` to `max_ms`, both inclusive, to the period of every arming from now on, a repeating
  /// timer's own armings too. See `jittered_delay_ms` for the range; a delay that comes out negative never expires.
  void set_jitter(int32_t min_ms, int32_t max_ms);

  /// Whether it is armed. Any thread.
  bool running() const ZYL_EXCLUDES(mutex);

  /// Milliseconds until expiry; 0 when it is not armed or already due.
  int64_t remaining_ms() const;

  sigc::signal<void> expired;

 private:
  static void on_timeout(evutil_socket_t fd, short events, void* self);
  void expire() ZYL_EXCLUDES(mutex);
  void start() ZYL_REQUIRES(mutex);
  int64_t next_delay_ms() const;

  event_base* base;
  event_ptr_t event;
  int32_t period_ms;
  bool jitter_enabled = false;
  int32_t jitter_min_ms = 0;
  int32_t jitter_max_ms = 0;
  bool one_shot;
  mutable mutex_t mutex;  // an expiry on the loop's thread against a cancel on another
  bool stopped ZYL_GUARDED_BY(mutex) = true;
};

/// The delay of a timer with jitter: `period_ms` plus a time from `min_ms` to `max_ms`, both inclusive, that `random`
/// chooses by its remainder. `random` is 0 or more; where it does not go beyond 2147483647, as that of `rand` does not,
/// times further than that from `min_ms` do not come. A `max_ms` below `min_ms` counts as `min_ms`. Cannot overflow.
int64_t jittered_delay_ms(int32_t period_ms, int32_t min_ms, int32_t max_ms, int64_t random);

}  // namespace zyl
