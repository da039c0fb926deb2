#pragma once

#include <mutex>

// Clang's thread-safety analysis; other compilers see nothing.
#if defined(__clang__)
#define ZYL_THREAD_ATTRIBUTE(x) __attribute__((x))
#else
#define ZYL_THREAD_ATTRIBUTE(x)
#endif

/// Marks data that may be touched only while the named mutex is held.
#define ZYL_GUARDED_BY(mutex) ZYL_THREAD_ATTRIBUTE(guarded_by(mutex))
/// Marks a function whose caller must hold the named mutex.
#define ZYL_REQUIRES(...) ZYL_THREAD_ATTRIBUTE(requires_capability(__VA_ARGS__))
/// Marks a function that must not be called while the named mutex is held.
#define ZYL_EXCLUDES(...) ZYL_THREAD_ATTRIBUTE(locks_excluded(__VA_ARGS__))

namespace zyl {

/// A mutex that clang's thread-safety analysis knows. Wraps `std::mutex` or `std::recursive_mutex`.
template <typename Mutex>
class ZYL_THREAD_ATTRIBUTE(capability("mutex")) annotated_mutex_t {
 public:
  void lock() ZYL_THREAD_ATTRIBUTE(acquire_capability()) { mutex.lock(); }
  bool try_lock() ZYL_THREAD_ATTRIBUTE(try_acquire_capability(true)) { return mutex.try_lock(); }
  void unlock() ZYL_THREAD_ATTRIBUTE(release_capability()) { mutex.unlock(); }

 private:
  Mutex mutex;
};

using mutex_t = annotated_mutex_t<std::mutex>;
using recursive_mutex_t = annotated_mutex_t<std::recursive_mutex>;

/// Holds an annotated mutex for its own lifetime.
template <typename Mutex>
class ZYL_THREAD_ATTRIBUTE(scoped_lockable) basic_lock_t {
 public:
  explicit basic_lock_t(Mutex& held) ZYL_THREAD_ATTRIBUTE(acquire_capability(held)) : mutex(held) { mutex.lock(); }
  ~basic_lock_t() ZYL_THREAD_ATTRIBUTE(release_capability()) { mutex.unlock(); }

  basic_lock_t(const basic_lock_t&) = delete;
  basic_lock_t& operator=(const basic_lock_t&) = delete;
  basic_lock_t(basic_lock_t&&) = delete;
  basic_lock_t& operator=(basic_lock_t&&) = delete;

 private:
  Mutex& mutex;
};

using lock_t = basic_lock_t<mutex_t>;
using recursive_lock_t = basic_lock_t<recursive_mutex_t>;

}  // namespace zyl
