#include "zyl/manual_event.h"

namespace zyl {

manual_event_t::manual_event_t(event_base* base) : trigger(make_event(base, EV_READ | EV_PERSIST, on_activated, this)) {
  event_add(trigger.get(), nullptr);
}

void manual_event_t::activate() { event_active(trigger.get(), EV_READ, 0); }

void manual_event_t::on_activated(evutil_socket_t /*fd*/, short /*events*/, void* self) {
  // The copy keeps the slots alive if one of them destroys this object.
  const sigc::signal<void> signal = static_cast<manual_event_t*>(self)->activated;
  signal.emit();
}

}  // namespace zyl
