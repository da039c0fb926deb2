#pragma once

#include <event2/event.h>

#include <memory>

namespace zyl {

/// Frees a libevent event, which also takes it out of its loop.
struct event_free_t {
  void operator()(event* owned) const { event_free(owned); }
};

/// Owns a libevent event. It must die before its base, on the base's thread.
using event_ptr_t = std::unique_ptr<event, event_free_t>;

}  // namespace zyl
