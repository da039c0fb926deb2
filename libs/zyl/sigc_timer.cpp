#include "zyl/sigc_timer.h"

#include <cstdlib>
#include <ctime>

#include "zyl/exceptions.h"
#include "zyl/timer_event.h"

namespace zyl {

sigc_timer_t::sigc_timer_t(event_base* base, int32_t period, bool once)
    : timeout(base != nullptr ? event_new(base, -1, 0, on_timeout, this) : nullptr),
      period_ms(period),
      one_shot(once) {}

sigc_timer_t::~sigc_timer_t() {
  if (timeout != nullptr) {
    event_free(timeout);
  }
}

void sigc_timer_t::set_jitter(int32_t min_ms, int32_t max_ms) {
  jitter_enabled = true;
  jitter_min_ms = min_ms;
  jitter_max_ms = max_ms;
}

int32_t sigc_timer_t::next_delay_ms() const {
  if (!jitter_enabled) {
    return period_ms;
  }
  std::srand(static_cast<unsigned>(std::time(nullptr)));
  // NOLINTNEXTLINE(concurrency-mt-unsafe,cert-msc50-cpp): spreading timers apart needs no quality
  return period_ms + jitter_min_ms + std::rand() % (jitter_max_ms + 1 - jitter_min_ms);
}

void sigc_timer_t::arm() {
  if (timeout == nullptr) {
    throw uninitialized_timer_exception_t();
  }
  stopped = false;
  add_timeout(timeout, next_delay_ms());
}

void sigc_timer_t::cancel() {
  stopped = true;
  if (timeout != nullptr) {
    event_del(timeout);
  }
}

bool sigc_timer_t::running() const { return timeout != nullptr && !stopped; }

int64_t sigc_timer_t::remaining_ms() const { return timeout != nullptr ? zyl::remaining_ms(timeout) : 0; }

void sigc_timer_t::on_timeout(evutil_socket_t /*fd*/, short /*events*/, void* self) {
  static_cast<sigc_timer_t*>(self)->expire();
}

void sigc_timer_t::expire() {
  if (one_shot) {
    cancel();
  } else {
    arm();
  }
  expired.emit();
}

}  // namespace zyl
