#pragma once

#include <map>
#include <memory>
#include <string>

#include "engine_lib/engine_ipc_socket.h"

namespace eipc {

/// The process's registry of bound datagram sockets, "/var/tarn-engine-ipc/<id>/<name>", for the engine's side of the
/// link and for peers in tests; a client connects a `socket_t` of its own. `name` is one for the whole process.
///
/// No lock: `init` and `close` belong to start-up and shutdown. A wrong name, an unknown id and a socket that cannot be
/// bound are programming errors: they are logged and end the process.
class manager_t {
 public:
  /// Binds the socket `id`, replacing what was bound under it. The first call gives the manager its name.
  static void init(const std::string& name, unsigned id, bool verbose);

  /// Closes the socket `id` and removes its path.
  static void close(const std::string& name, unsigned id);

  /// The socket `id`; owned by the registry.
  static socket_t& sk(unsigned id);

  /// The manager's name; empty, and logged, before the first `init`.
  static std::string get_name();

 private:
  explicit manager_t(std::string own_name);
  void create_socket(unsigned id, bool verbose);
  void close_socket(unsigned id);
  std::string socket_path(unsigned id) const;

  static std::unique_ptr<manager_t> s_manager;

  std::map<unsigned, std::unique_ptr<socket_t>> sockets;
  std::string name;
};

}  // namespace eipc
