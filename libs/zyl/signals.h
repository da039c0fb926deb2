#pragma once

#include <cstdint>
#include <optional>

namespace zyl {

// For programs whose main thread does nothing but wait for the signals that end or disturb a service: SIGHUP, SIGINT,
// SIGQUIT, SIGPIPE, SIGTERM, SIGWINCH. Each function throws `last_process_exception_t`.

/// Blocks those signals for the calling thread and for the threads that it starts from now on. Call it first in `main`.
/// Throws "pthread_sigmask failed".
void block_signals();

/// Waits until one of them but SIGPIPE, which stays unheard, is pending, and takes it. They must be blocked. Throws
/// "sigwait failed".
int wait_for_signal();

/// The same, for `timeout_ms` milliseconds at most; nothing if none came. A timeout of 0 or less only looks. Throws
/// "sigwait failed".
std::optional<int> wait_for_signal_timeout(int32_t timeout_ms);

/// Makes the process the leader of a session of its own, without a terminal, and blocks those signals, as it has nobody
/// left to send them by key or window. Throws "setsid failed" in a leader of a process group, then with nothing
/// changed.
void daemon_session();

}  // namespace zyl
