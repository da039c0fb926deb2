#pragma once

#include <cstdint>
#include <functional>

namespace zyl {

/// Milliseconds of CLOCK_MONOTONIC, or of the clock that a test has set. Never 0, which callers use for "not armed".
/// Any thread.
int64_t now_ms();

/// Replaces the clock of `now_ms`; an empty function brings the real one back. For tests; not while other threads ask.
void set_clock(std::function<int64_t()> clock);

}  // namespace zyl
