#include "control_lib/src/ve_ipc_engine.h"

#include "control_lib/src/event_base_manager.h"

namespace control_lib {

ve_ipc_engine_t::ve_ipc_engine_t(event_base* base) : ve_ipc_t(base), session_t("ve_ipc_engine_t") {}

ve_ipc_engine_t::ve_ipc_engine_t(event_base_manager_t& worker) : ve_ipc_engine_t(worker.event_base()) {}

ve_ipc_engine_t& ve_ipc_engine_t::instance(event_base_manager_t& worker) {
  static ve_ipc_engine_t engine(worker);
  return engine;
}

bool ve_ipc_engine_t::open_session() {
  open(false);
  return true;
}

void ve_ipc_engine_t::close_session() { close_all(); }

}  // namespace control_lib
