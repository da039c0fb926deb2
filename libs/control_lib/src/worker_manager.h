#pragma once

#include "control_lib/src/session.h"

namespace control_lib {

class worker_t;

/// Starts and stops the threads of a process as a group. The session "worker_manager_t". One thread.
class worker_manager_t : public session_t {
 public:
  worker_manager_t() : session_t("worker_manager_t") {}

  /// Starts every worker, in the order in which they were added. None may run already.
  virtual void start_all() = 0;

  /// Tells every running worker to stop, waits until all have ended, and then tells all of them, also those that were
  /// never started.
  virtual void stop_all() = 0;

  /// A worker adds itself when it is made. It must live as long as `start_all` and `stop_all` are called.
  virtual void add(worker_t* worker) = 0;
};

}  // namespace control_lib
