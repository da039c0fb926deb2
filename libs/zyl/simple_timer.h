#pragma once

#include <event2/event.h>

#include <cstdint>
#include <functional>
#include <memory>

#include "zyl/event_ptr.h"

namespace zyl {

/// A one-shot timer that calls a function: made without a loop, given one later, armed as often as one likes.
///
/// Thread of the loop; it must die before its base. Its callback may do anything with it, destroy it too.
class simple_timer_t {
 public:
  simple_timer_t() = default;

  simple_timer_t(const simple_timer_t&) = delete;
  simple_timer_t& operator=(const simple_timer_t&) = delete;
  simple_timer_t(simple_timer_t&&) = delete;
  simple_timer_t& operator=(simple_timer_t&&) = delete;
  ~simple_timer_t() = default;

  /// Gives it its loop and what it calls, which must not throw or be empty. Once more: the old loop and callback are
  /// forgotten, a pending timeout too. Throws `exception_t` if `base` is null and `std::bad_alloc`, then with nothing
  /// changed.
  void init(event_base* base, std::function<void()> callback);

  /// Calls the callback once, `interval_ms` milliseconds from now; what was armed before no longer counts. A negative
  /// interval never expires. Before `init` throws `uninitialized_timer_exception_t`.
  void arm(int32_t interval_ms);

  /// Calls the callback soon, on the loop's thread; a pending timeout is over then. Before `init` throws
  /// `uninitialized_timer_exception_t`.
  void activate();

  /// Disarms it. Before `init` throws `uninitialized_timer_exception_t`.
  void cancel();

  /// Milliseconds until the callback; 0 when it is not armed, already due, or before `init`.
  int64_t remaining_ms() const;

 private:
  static void on_timeout(evutil_socket_t fd, short events, void* self);
  event* checked_event() const;

  using callback_t = std::function<void()>;

  std::shared_ptr<const callback_t> callback;  // shared with the call that is being made, which may replace it
  event_ptr_t timeout;
};

}  // namespace zyl
