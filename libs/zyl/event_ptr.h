#pragma once

#include <event2/event.h>

#include <memory>

namespace zyl {

/// Frees a libevent event, which also takes it out of its loop. On another thread than the loop's it waits for the
/// event's callback if that runs.
struct event_free_t {
  void operator()(event* owned) const { event_free(owned); }
};

/// Owns a libevent event, which must die before its base.
using event_ptr_t = std::unique_ptr<event, event_free_t>;

/// Makes an event without a descriptor: it fires by `event_active` or by a timeout. Throws `exception_t` "event without
/// a base" if `base` is null, and `std::bad_alloc`. Any thread.
event_ptr_t make_event(event_base* base, short flags, event_callback_fn callback, void* argument);

}  // namespace zyl
