#include "zyl/sigc_timer.h"

#include <sys/time.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>

#include "zyl/exceptions.h"

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
  event_del(timeout);
  stopped = false;
  const int32_t delay_ms = next_delay_ms();
  if (delay_ms < 0) {
    event_add(timeout, nullptr);
    return;
  }
  const timeval delay{delay_ms / 1000, (delay_ms % 1000) * 1000L};
  event_add(timeout, &delay);
}

void sigc_timer_t::cancel() {
  stopped = true;
  if (timeout != nullptr) {
    event_del(timeout);
  }
}

bool sigc_timer_t::running() const { return timeout != nullptr && !stopped; }

int64_t sigc_timer_t::remaining_ms() const {
  timeval due{};
  if (timeout == nullptr || event_pending(timeout, EV_TIMEOUT, &due) == 0) {
    return 0;
  }
  timeval now{};
  gettimeofday(&now, nullptr);
  const int64_t left = int64_t{due.tv_sec - now.tv_sec} * 1000 + (due.tv_usec - now.tv_usec) / 1000;
  return std::max<int64_t>(left, 0);
}

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
