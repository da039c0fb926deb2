#pragma once

#include <event2/event.h>

struct evdns_base;

namespace zyl {

/// Makes an event base. Nothing else in the project may: the first call sets libevent up for threads, so that posts
/// from other threads lock and wake, and routes its messages to the logger "zyl_event". A fatal libevent error logs
/// "FATAL : " and the code and ends the process. Never null; the caller frees the base. Throws `exception_t` "no event
/// base" if libevent has none to give, as for want of descriptors, and `std::bad_alloc`. Any thread.
event_base* new_event_base();

/// A libevent loop and its resolver. Owned and run by one thread; `stop` and `zyl::post` may come from any.
class event_loop_t {
 public:
  /// Throws as `new_event_base` does.
  event_loop_t();
  virtual ~event_loop_t();

  event_loop_t(const event_loop_t&) = delete;
  event_loop_t& operator=(const event_loop_t&) = delete;
  event_loop_t(event_loop_t&&) = delete;
  event_loop_t& operator=(event_loop_t&&) = delete;

  /// Runs until `stop`, also while there is no event. One stop is kept for a run that has not begun. Not restartable.
  /// Returns at once, with an error line, if libevent cannot run the loop, as on a base that another thread runs.
  void run();

  /// Ends `run` after the callbacks of its present turn. Any thread.
  virtual void stop();

  /// The loop's base; lives as long as this object.
  event_base* base() const { return loop_base; }

  /// The loop's resolver; null on a machine without a resolver configuration.
  evdns_base* dns_base() const { return resolver; }

 protected:
  /// `run`; false if libevent could not run the loop.
  bool try_run();

 private:
  event_base* loop_base;
  evdns_base* resolver;
};

}  // namespace zyl
