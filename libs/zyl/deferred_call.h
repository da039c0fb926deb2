#pragma once

#include "zyl/loop_owned.h"

namespace zyl {

class event_loop_t;

/// A call that is made once, later, on a loop's thread: derive, write the call operator, post an object of it.
///
///   std::make_unique<my_call_t>(...).release()->post(loop);
///
/// For a plain closure there is `zyl::post`.
class deferred_call_t : public loop_owned_t {
 public:
  /// The call, on the thread that runs the loop. Must not throw.
  virtual void operator()() = 0;

  /// Has the loop call it soon, as `zyl::post` does, and then destroy it; a loop that ends before destroys it uncalled.
  /// The object must have been made by `new`, alone, and belongs to the loop from this call on, also if it throws
  /// `std::bad_alloc`, or `exception_t` for a null base: it must not be touched again. Calls posted by one thread are
  /// made in that order. Any thread.
  void post(event_loop_t& loop);
  void post(event_base* base);

 private:
  bool run() final;
};

}  // namespace zyl
