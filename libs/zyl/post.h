#pragma once

#include <functional>

struct event_base;

namespace zyl {

/// Runs `call` once on the thread that runs `base`, in the order of posting. Any thread may post.
///
/// A closure that crosses threads must be a lambda over plain values: `sigc::mem_fun` of a `sigc::trackable` is not
/// thread-safe. `event_loop_t` destroys what still waits when it ends, without running it.
void post(event_base* base, std::function<void()> call);

/// Destroys what `base` still holds of closures, deferred calls and self-deleting timers, without running them. For who
/// frees a base that no longer runs.
void drop_posts(event_base* base);

}  // namespace zyl
