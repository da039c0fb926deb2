// A scope when memory runs out: this program has an allocator that can be told to fail.
#include <gtest/gtest.h>
#include <spdlog/logger.h>

#include <cstdlib>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "zyl/log/generic_sink.h"
#include "zyl/log/scope_logger.h"

namespace {

constexpr int without_limit = -1;

// How many allocations of this thread still succeed.
thread_local int allocations_left = without_limit;

void* allocate(std::size_t size) noexcept {
  if (allocations_left == 0) {
    return nullptr;
  }
  if (allocations_left > 0) {
    --allocations_left;
  }
  return std::malloc(size);  // NOLINT(cppcoreguidelines-no-malloc): underneath the operators
}

}  // namespace

void* operator new(std::size_t size) {
  void* const memory = allocate(size);
  return memory != nullptr ? memory : throw std::bad_alloc();
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept { return allocate(size); }
void* operator new[](std::size_t size) { return operator new(size); }
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept { return allocate(size); }
void operator delete(void* memory) noexcept { std::free(memory); }                          // NOLINT
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }    // NOLINT
void operator delete[](void* memory) noexcept { std::free(memory); }                        // NOLINT
void operator delete[](void* memory, std::size_t /*size*/) noexcept { std::free(memory); }  // NOLINT

namespace {

/// A whole scope with so many allocations. Whether there would have been one more.
bool scope_runs_out_of(int allocations, spdlog::logger& logger, std::string name) {
  allocations_left = allocations;
  {
    zyl::scope_logger scope(std::move(name), spdlog::level::info, logger);
    scope << "text that is too long to be held in a string without memory of its own" << std::flush;
    scope << "text that is still there when the scope ends, and as long as the other one";
  }
  const bool ran_out = allocations_left == 0;
  allocations_left = without_limit;
  return ran_out;
}

}  // namespace

TEST(ScopeLoggerMemory, NoExceptionLeavesAScopeAtWhicheverAllocationMemoryRunsOut) {
  int lines = 0;
  spdlog::logger logger("scopes", std::make_shared<zyl::generic_sink<std::mutex>>([&](std::string_view) { ++lines; }));
  logger.set_error_handler([](const std::string&) {});
  const std::string name = "a scope whose name is too long to be held without memory";
  int allocations = 0;
  while (scope_runs_out_of(allocations, logger, name)) {
    ++allocations;
  }
  EXPECT_GT(allocations, 4);
  lines = 0;
  EXPECT_FALSE(scope_runs_out_of(allocations + 1, logger, name));
  EXPECT_EQ(lines, 4);
}
