#pragma once

#include <list>

#include "control_lib/src/worker_manager.h"

namespace control_lib {

/// The manager of the workers of a process.
class worker_manager_imp_t : public worker_manager_t {
 public:
  void start_all() override;
  void stop_all() override;
  void add(worker_t* worker) override;

 private:
  std::list<worker_t*> workers;
};

}  // namespace control_lib
