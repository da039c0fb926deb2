#include "control_lib/src/worker_manager_imp.h"

#include "control_lib/src/worker.h"

namespace control_lib {

void worker_manager_imp_t::start_all() {
  for (worker_t* worker : workers) {
    worker->spawn();
  }
}

// All are told before any is waited for, so that a slow one does not hold up the others.
void worker_manager_imp_t::stop_all() {
  for (worker_t* worker : workers) {
    if (worker->joinable()) {
      worker->stop();
    }
  }
  for (worker_t* worker : workers) {
    if (worker->joinable()) {
      worker->join();
    }
  }
  for (worker_t* worker : workers) {
    worker->on_stopped();
  }
}

void worker_manager_imp_t::add(worker_t* worker) { workers.push_back(worker); }

}  // namespace control_lib
