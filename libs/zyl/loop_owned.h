#pragma once

#include <event2/event.h>

#include <memory>

#include "zyl/event_ptr.h"

namespace zyl {

/// Something that belongs to an event loop: it lives until its work is done or it is dropped.
class loop_owned_t {
 public:
  loop_owned_t() = default;
  virtual ~loop_owned_t() = default;

  /// Destroys all that `base` still owns, without running it, and what their destruction gives it meanwhile. The base
  /// must not be running.
  static void drop_all(event_base* base);

  loop_owned_t(const loop_owned_t&) = delete;
  loop_owned_t& operator=(const loop_owned_t&) = delete;
  loop_owned_t(loop_owned_t&&) = delete;
  loop_owned_t& operator=(loop_owned_t&&) = delete;

 protected:
  /// Gives `self` to the loop of `base`, which runs it soon. Any thread. Throws `std::bad_alloc`, and
  /// `exception_t` for a null base.
  static void activate_on(event_base* base, std::unique_ptr<loop_owned_t> self);

  /// Gives `self` to the loop of `base`, which runs it each time `interval` has gone by. Any thread. Throws
  /// `std::bad_alloc`, and `exception_t` for a null base.
  static void repeat_on(event_base* base, const timeval& interval, std::unique_ptr<loop_owned_t> self);

 private:
  /// The work, on the loop's thread. True keeps the object, false destroys it and its event. Must not throw.
  virtual bool run() = 0;

  static void on_event(evutil_socket_t fd, short events, void* self);
  static int collect(const event_base* base, const event* candidate, void* collected);

  event_ptr_t trigger;
};

}  // namespace zyl
