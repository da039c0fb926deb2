#pragma once

#include <functional>
#include <future>

#include "control_lib/src/worker.h"
#include "control_lib/src/worker_manager.h"

namespace control_lib {

/// A worker that does what the test says; by default it runs until it is stopped.
class stub_worker_t : public worker_t {
 public:
  explicit stub_worker_t(worker_manager_t& manager, const char* description = "stub")
      : worker_t(manager, description) {}

  void run() override { on_run(); }
  void stop() override { on_stop(); }
  void on_stopped() override { when_stopped(); }

  void wait_for_stop() { stopped.get_future().wait(); }
  void end_the_wait() { stopped.set_value(); }

  std::function<void()> on_run = [this] { wait_for_stop(); };
  std::function<void()> on_stop = [this] { end_the_wait(); };
  std::function<void()> when_stopped = [] {};

 private:
  std::promise<void> stopped;
};

}  // namespace control_lib
