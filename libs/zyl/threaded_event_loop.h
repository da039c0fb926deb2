#pragma once

#include <atomic>
#include <thread>

#include "zyl/event_loop.h"
#include "zyl/mutex.h"

namespace zyl {

/// An event loop with a thread of its own, which alone may run it. `start` and `stop` may come from any thread; unlike
/// its base class it may be started again, and what was posted while it stood still runs then.
class threaded_event_loop_t : public event_loop_t {
 public:
  threaded_event_loop_t() = default;

  /// Stops the loop. Not on the loop's own thread.
  ~threaded_event_loop_t() override;

  threaded_event_loop_t(const threaded_event_loop_t&) = delete;
  threaded_event_loop_t& operator=(const threaded_event_loop_t&) = delete;
  threaded_event_loop_t(threaded_event_loop_t&&) = delete;
  threaded_event_loop_t& operator=(threaded_event_loop_t&&) = delete;

  /// Starts a thread that runs the loop; a loop that runs is stopped first. Not on the loop's own thread. Throws
  /// `std::system_error` if there is no thread to be had. The thread ends at once, with an error line, if libevent
  /// cannot run the loop.
  void start() ZYL_EXCLUDES(mutex);

  /// Ends the loop after the callbacks of its present turn and waits until its thread has ended. On the loop's own
  /// thread it does not wait: the thread ends when the callback has returned. Without a running loop does nothing.
  void stop() override ZYL_EXCLUDES(mutex);

 private:
  using event_loop_t::run;  // not for others: `start` does that

  void run_until_stopped();
  void ask_to_stop();
  void end_thread() ZYL_REQUIRES(mutex);

  mutex_t mutex;
  std::thread thread ZYL_GUARDED_BY(mutex);
  std::atomic<std::thread::id> loop_thread{};
  std::atomic<bool> stopping = false;
};

}  // namespace zyl
