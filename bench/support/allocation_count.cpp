#include "bench/support/allocation_count.h"

#include <cstddef>

// The C library's own allocator under the names that it gives to those who put theirs in front.
extern "C" {
void* __libc_malloc(std::size_t size);                     // NOLINT(bugprone-reserved-identifier)
void* __libc_calloc(std::size_t count, std::size_t size);  // NOLINT(bugprone-reserved-identifier)
void* __libc_realloc(void* memory, std::size_t size);      // NOLINT(bugprone-reserved-identifier)
}

namespace bench {
namespace {

std::atomic<uint64_t> own_count{0};
std::atomic<std::atomic<uint64_t>*> counter{&own_count};

void count_one() { counter.load(std::memory_order_relaxed)->fetch_add(1, std::memory_order_relaxed); }

}  // namespace

uint64_t allocation_count() { return counter.load(std::memory_order_relaxed)->load(std::memory_order_relaxed); }

void count_allocations_in(std::atomic<uint64_t>& shared) { counter = &shared; }

}  // namespace bench

#define VGN_SEEN_BY_LIBRARIES __attribute__((visibility("default"), used))

extern "C" {

VGN_SEEN_BY_LIBRARIES void* malloc(std::size_t size) noexcept {
  bench::count_one();
  return __libc_malloc(size);
}

VGN_SEEN_BY_LIBRARIES void* calloc(std::size_t count, std::size_t size) noexcept {
  bench::count_one();
  return __libc_calloc(count, size);
}

VGN_SEEN_BY_LIBRARIES void* realloc(void* memory, std::size_t size) noexcept {
  bench::count_one();
  return __libc_realloc(memory, size);
}
}
