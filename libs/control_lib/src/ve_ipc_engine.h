#pragma once

#include "control_lib/src/rubbish.h"
#include "control_lib/src/session.h"
#include "control_lib/src/ve_ipc.h"

namespace control_lib {

class event_base_manager_t;

/// The link to the video engine as a service on a worker's loop. The session "ve_ipc_engine_t".
class ve_ipc_engine_t : public ve_ipc_t, public session_t, public rubbish_t {
 public:
  /// `base` must outlive this object.
  explicit ve_ipc_engine_t(event_base* base);

  /// On the loop of a worker, which must outlive this object.
  explicit ve_ipc_engine_t(event_base_manager_t& worker);

  /// The one of the process, made on the loop of `worker` by the first call, which is the loop's thread or comes before
  /// it runs; the argument of later ones, on any thread, is ignored. It lives until the process ends; so must the
  /// worker: a static object that was made before the first call.
  static ve_ipc_engine_t& instance(event_base_manager_t& worker);

  /// Opens the link to the real engine; true, as the poll keeps trying until the engine is there. On the loop's thread.
  bool open_session() override;

  /// Closes everything. On the loop's thread.
  void close_session() override;
};

}  // namespace control_lib
