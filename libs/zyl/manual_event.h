#pragma once

#include <event2/event.h>
#include <sigc++/sigc++.h>

#include "zyl/event_ptr.h"

namespace zyl {

/// Passes control into a loop's thread: whoever calls `activate`, on whatever thread, has `activated` emitted on the
/// loop's. Make, connect and destroy it on the loop's thread, or while the loop does not run.
class manual_event_t {
 public:
  /// Throws `exception_t` if `base` is null, and `std::bad_alloc`.
  explicit manual_event_t(event_base* base);

  manual_event_t(const manual_event_t&) = delete;
  manual_event_t& operator=(const manual_event_t&) = delete;
  manual_event_t(manual_event_t&&) = delete;
  manual_event_t& operator=(manual_event_t&&) = delete;
  ~manual_event_t() = default;

  /// Emits `activated` soon, on the loop's thread. Calls that come before that are one. Any thread.
  void activate();

  /// Slots that are connected during its emission are called from the next one on. A slot may destroy this object, and
  /// must not throw.
  sigc::signal<void> activated;

 private:
  static void on_activated(evutil_socket_t fd, short events, void* self);

  event_ptr_t trigger;
};

}  // namespace zyl
