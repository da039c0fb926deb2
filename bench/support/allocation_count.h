#pragma once

#include <atomic>
#include <cstdint>

namespace bench {

/// How often this process has asked for memory so far: every malloc, calloc, realloc and operator new, in the libraries
/// under it too. Any thread.
uint64_t allocation_count();

/// From now on this process counts there: in memory that it shares with another, which reads it.
void count_allocations_in(std::atomic<uint64_t>& shared);

}  // namespace bench
