#pragma once

#include <event2/event.h>
#include <sigc++/sigc++.h>

#include <atomic>
#include <cstdint>

namespace zyl {

/// A timer on an event loop with a signal for its expiry. Thread of the loop, construction included; `cancel` and
/// `running` may come from any thread.
///
/// A repeating timer is armed again before `expired` is emitted, so that the time its slots take does not stretch the
/// period; a one-shot timer is cancelled before. A slot must not destroy the timer.
class sigc_timer_t {
 public:
  /// `period_ms`: time until the first expiry and between expiries, in milliseconds; a negative period never expires.
  sigc_timer_t(event_base* base, int32_t period_ms, bool one_shot);
  ~sigc_timer_t();

  sigc_timer_t(const sigc_timer_t&) = delete;
  sigc_timer_t& operator=(const sigc_timer_t&) = delete;
  sigc_timer_t(sigc_timer_t&&) = delete;
  sigc_timer_t& operator=(sigc_timer_t&&) = delete;

  /// Starts the timer, or starts it anew. Throws `uninitialized_timer_exception_t` on a timer made with a null base.
  void arm();

  /// Stops the timer. Nothing happens to one that is not running.
  void cancel();

  /// The period from the next `arm` on.
  void set_period(int32_t milliseconds) { period_ms = milliseconds; }

  /// Adds a random time of `min_ms` to `max_ms`, both inclusive, to the period of every arming from now on. `max_ms`
  /// must not be less than `min_ms`; a delay that comes out negative never expires.
  void set_jitter(int32_t min_ms, int32_t max_ms);

  /// Whether it is armed.
  bool running() const;

  /// Milliseconds until expiry; 0 when it is not armed or already due.
  int64_t remaining_ms() const;

  sigc::signal<void> expired;

 private:
  static void on_timeout(evutil_socket_t fd, short events, void* self);
  void expire();
  int32_t next_delay_ms() const;

  event* timeout;
  int32_t period_ms;
  bool jitter_enabled = false;
  int32_t jitter_min_ms = 0;
  int32_t jitter_max_ms = 0;
  bool one_shot;
  std::atomic<bool> stopped = true;
};

}  // namespace zyl
