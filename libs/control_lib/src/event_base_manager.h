#pragma once

#include <event2/event.h>

#include <atomic>
#include <string>

#include "control_lib/src/status_entry.h"
#include "control_lib/src/worker.h"

namespace control_lib {

/// The worker that runs a libevent loop. Loop-bound objects take its `event_base()`.
///
/// Ready to run when made; to run once more after it has ended: `join`, `start`, `spawn`. What was posted to the base
/// and has not run stays for the next time.
class event_base_manager_t : public worker_t {
 public:
  /// libevent's type, whose name the accessor has here.
  using base_t = ::event_base;

  /// `manager` and `description` as every worker has them. Throws as `zyl::new_event_base`; the manager, which
  /// knows the worker by then, must not be used after that.
  explicit event_base_manager_t(worker_manager_t& manager, const char* description = "event_base_manager_t");

  /// Frees the base, and what is still posted to it without running it. The objects bound to it must be gone.
  ~event_base_manager_t() override;

  event_base_manager_t(const event_base_manager_t&) = delete;
  event_base_manager_t& operator=(const event_base_manager_t&) = delete;
  event_base_manager_t(event_base_manager_t&&) = delete;
  event_base_manager_t& operator=(event_base_manager_t&&) = delete;

  /// Runs the loop, also while it has no events, until `stop` or until somebody breaks the loop.
  void run() override;

  /// Ends `run`, and keeps one that has not begun from running. Any thread, at any time.
  void stop() override;

  void on_stopped() override {}

  /// Lets `run` run again after a stop. Not while the thread runs.
  void start() { running = true; }

  /// Lives as long as this worker.
  base_t* event_base() const { return base; }

  /// libevent's list of the base's events, for people. Any thread.
  std::string dump_events() const;

  /// The tree "event_base_manager", "event_base" with the words "events", which gives `dump_events`, and "kill", which
  /// stops the loop. Must not be read when this worker is gone. Any thread.
  status_entry_t status();

 private:
  void take_result(int result);

  base_t* base;
  std::atomic<bool> running{true};
};

}  // namespace control_lib
