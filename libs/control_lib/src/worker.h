#pragma once

#include <memory>

namespace control_lib {

class worker_manager_t;

/// A thread of the process, which its manager starts and stops together with the others.
///
/// While the thread runs there is a file "/var/run/workers/worker_<kernel thread id>.pid" that holds the description.
/// What `run` throws ends the thread and is logged; nothing restarts it. All operations belong to the manager's thread
/// unless they say otherwise.
class worker_t {
 public:
  /// Adds itself to `manager`, which must not be used any more once a worker of it is gone. A null description is
  /// "(no description)". Throws `std::bad_alloc`.
  worker_t(worker_manager_t& manager, const char* description);

  /// Ends the process, by `std::terminate`, if the thread was not joined: nothing could stop it any more.
  virtual ~worker_t();

  worker_t(const worker_t&) = delete;
  worker_t& operator=(const worker_t&) = delete;
  worker_t(worker_t&&) = delete;
  worker_t& operator=(worker_t&&) = delete;

  /// What the thread does until `stop`. On the worker's thread.
  virtual void run() = 0;

  /// Makes `run` return soon; does not wait for that. Called only while the thread is joinable, so `run` may not have
  /// begun or may have ended.
  virtual void stop() = 0;

  /// All workers have ended; called also if this one was never started.
  virtual void on_stopped() = 0;

  /// Starts the thread. One that cannot be started is logged. A thread before it must have been joined; the process
  /// ends, by `std::terminate`, if not.
  void spawn();

  /// Whether the thread was started and not joined yet; it may have ended.
  bool joinable() const;

  /// Whether the caller is this worker's thread. Any thread may ask.
  bool is_current_thread() const;

  /// Waits until the thread has ended. Throws `std::system_error` if it is not joinable.
  void join();

 private:
  struct record_t;

  void work();
  void run_and_tell(int id);

  std::unique_ptr<record_t> record;
};

}  // namespace control_lib
