#pragma once

#include <event2/event.h>

#include <cstdint>

namespace zyl {

// What the timer classes have in common: times of libevent events in milliseconds.

/// `milliseconds`, 0 or more, as libevent wants it.
timeval timeval_of(int64_t milliseconds);

/// Arms a timeout `delay_ms` milliseconds from now, anew if it is pending. With a negative delay it never expires.
/// On the loop's thread.
void add_timeout(event* timeout, int64_t delay_ms);

/// Milliseconds until a timeout expires; 0 when it is not pending or already due.
int64_t remaining_ms(const event* timeout);

}  // namespace zyl
