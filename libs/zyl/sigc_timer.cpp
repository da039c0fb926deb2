#include "zyl/sigc_timer.h"

#include <algorithm>
#include <cstdlib>
#include <ctime>

#include "zyl/exceptions.h"
#include "zyl/timer_event.h"

namespace zyl {

int64_t jittered_delay_ms(int32_t period_ms, int32_t min_ms, int32_t max_ms, int64_t random) {
  const int64_t choices = int64_t{std::max(min_ms, max_ms)} + 1 - min_ms;
  return int64_t{period_ms} + min_ms + random % choices;
}

sigc_timer_t::sigc_timer_t(event_base* loop_base, int32_t period, bool once)
    : base(loop_base),
      event(base != nullptr ? make_event(base, 0, on_timeout, this) : nullptr),
      period_ms(period),
      one_shot(once) {}

void sigc_timer_t::set_jitter(int32_t min_ms, int32_t max_ms) {
  jitter_enabled = true;
  jitter_min_ms = min_ms;
  jitter_max_ms = max_ms;
}

int64_t sigc_timer_t::next_delay_ms() const {
  if (!jitter_enabled) {
    return period_ms;
  }
  std::srand(static_cast<unsigned>(std::time(nullptr)));
  // NOLINTNEXTLINE(concurrency-mt-unsafe,cert-msc50-cpp): spreading timers apart needs no quality
  return jittered_delay_ms(period_ms, jitter_min_ms, jitter_max_ms, std::rand());
}

void sigc_timer_t::arm() {
  if (!event) {
    throw uninitialized_timer_exception_t();
  }
  const lock_t lock(mutex);
  start();
}

void sigc_timer_t::start() {
  stopped = false;
  add_timeout(event.get(), next_delay_ms());
}

// Without libevent's wait for a callback that runs: that one may be waiting for the mutex, or its slots for the caller.
void sigc_timer_t::cancel() {
  const lock_t lock(mutex);
  stopped = true;
  if (event) {
    event_del_noblock(event.get());
  }
}

bool sigc_timer_t::running() const {
  const lock_t lock(mutex);
  return event && !stopped;
}

int64_t sigc_timer_t::remaining_ms() const { return event ? zyl::remaining_ms(event.get()) : 0; }

void sigc_timer_t::on_timeout(evutil_socket_t /*fd*/, short /*events*/, void* self) {
  static_cast<sigc_timer_t*>(self)->expire();
}

void sigc_timer_t::expire() {
  {
    const lock_t lock(mutex);
    // Cancelled on another thread when the expiry was on its way already.
    if (stopped) {
      return;
    }
    if (one_shot) {
      stopped = true;
    } else {
      start();
    }
  }
  expired.emit();
}

}  // namespace zyl
