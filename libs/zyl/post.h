#pragma once

#include <functional>

struct event_base;

namespace zyl {

/// Runs `call` once on the thread that runs `base`, in the order of posting. Any thread may post. `call` must not throw
/// or be empty. Throws `std::bad_alloc`, and `exception_t` if `base` is null; then `call` is destroyed.
///
/// What a callback of the loop posts still belongs to the loop's turn: a closure that always posts itself again keeps
/// out timers, descriptors and `event_loop_t::stop`.
///
/// A closure that crosses threads must be a lambda over plain values: `sigc::mem_fun` of a `sigc::trackable` is not
/// thread-safe. `event_loop_t` destroys what still waits when it ends, without running it.
void post(event_base* base, std::function<void()> call);

/// Destroys what `base` still holds of closures, deferred calls and self-deleting timers, without running them, and
/// what their destruction posts, which therefore must come to an end. For who frees a base that no longer runs.
void drop_posts(event_base* base);

}  // namespace zyl
