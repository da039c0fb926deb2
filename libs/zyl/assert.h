#pragma once

namespace zyl {

/// Tells standard error about a condition that did not hold, in the words of the C library's `assert`, and aborts.
[[noreturn]] void assertion_failed(const char* condition, const char* file, unsigned line,
                                   const char* function) noexcept;

}  // namespace zyl

/// Ends the process when the condition does not hold. Unlike `assert` it also guards builds with NDEBUG: what it stands
/// in front of would corrupt memory or a peer. The condition is evaluated once, always.
#define ZYL_ASSERT(condition) \
  ((condition) ? void(0) : ::zyl::assertion_failed(#condition, __FILE__, __LINE__, __PRETTY_FUNCTION__))
