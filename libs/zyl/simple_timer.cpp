#include "zyl/simple_timer.h"

#include <memory>
#include <utility>

#include "zyl/exceptions.h"
#include "zyl/timer_event.h"

namespace zyl {

void simple_timer_t::init(event_base* base, std::function<void()> on_expiry) {
  auto made = make_event(base, 0, on_timeout, this);
  callback = std::make_shared<const callback_t>(std::move(on_expiry));
  timeout = std::move(made);
}

void simple_timer_t::arm(int32_t interval_ms) { add_timeout(checked_event(), interval_ms); }

// Not as EV_TIMEOUT: the time left of an event that was never armed would be asked for then, and there is none.
void simple_timer_t::activate() { event_active(checked_event(), 0, 0); }

void simple_timer_t::cancel() { event_del(checked_event()); }

int64_t simple_timer_t::remaining_ms() const { return timeout ? zyl::remaining_ms(timeout.get()) : 0; }

event* simple_timer_t::checked_event() const {
  if (!timeout) {
    throw uninitialized_timer_exception_t();
  }
  return timeout.get();
}

void simple_timer_t::on_timeout(evutil_socket_t /*fd*/, short /*events*/, void* self) {
  const auto call = static_cast<simple_timer_t*>(self)->callback;
  (*call)();
}

}  // namespace zyl
