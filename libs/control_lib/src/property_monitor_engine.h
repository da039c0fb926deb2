#pragma once

#include <event2/event.h>

#include <list>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>

#include "control_lib/src/property_monitor_eb.h"
#include "control_lib/src/session.h"
#include "zyl/mutex.h"
#include "zyl/property_client.h"

namespace control_lib {

class event_base_manager_t;

/// The property monitor of an event loop: one connection, and the observers of each path. The session
/// "property_monitor_engine_t".
///
/// A lost connection is not noticed, the observers merely hear nothing more. It must be destroyed on the loop's thread,
/// or when the loop has ended; the base must outlive it.
class property_monitor_engine_t : public property_monitor_eb_t, public session_t {
 public:
  /// Connects at once; `connect` can be tried again if that fails, which is logged. Throws `std::bad_alloc` if the loop
  /// cannot watch the connection.
  explicit property_monitor_engine_t(event_base* loop_base);

  /// The same on the loop of a worker.
  explicit property_monitor_engine_t(event_base_manager_t& worker);

  /// Sends for the paths that are registered already, on the caller's thread. Any thread, but not from within an
  /// observer's call, which has the lock already. Throws `std::bad_alloc`, without a connection then, if the loop
  /// cannot watch it.
  void connect() override;

  /// Asks on the loop for the value of the path. Who joins an observed path makes all of its observers hear the value
  /// again. Not from within an observer's call: post it.
  void monitor(const std::string& path, property_observer_eb_t* observer) override;

  /// Not from within an observer's call: post it.
  bool set(const std::string& path, const std::string& value) override;

 private:
  struct event_deleter_t {
    void operator()(event* freed) const;
  };
  struct message_t {
    std::string command;
    std::string path;
    std::string value;
  };
  using send_t = void (property_monitor_engine_t::*)(const std::string& path);

  void schedule(send_t send, const std::string& path);
  void send_prop_monitor(const std::string& path) ZYL_REQUIRES(mutex);
  void send_get(const std::string& path) ZYL_REQUIRES(mutex);
  static void on_socket_event(evutil_socket_t fd, short events, void* self);
  void poll();
  void dispatch(const std::string& command, const std::string& path, const std::string& value) ZYL_REQUIRES(mutex);
  const char* connection_text() ZYL_REQUIRES(mutex);

  event_base* base;
  zyl::mutex_t mutex;
  std::unordered_map<std::string, std::list<property_observer_eb_t*>> observers ZYL_GUARDED_BY(mutex);
  std::unordered_set<std::string> answered ZYL_GUARDED_BY(mutex);
  zyl::property_client_t client ZYL_GUARDED_BY(mutex);
  std::unique_ptr<event, event_deleter_t> socket_event ZYL_GUARDED_BY(mutex);
  /// The message that is being read, for its memory.
  message_t received ZYL_GUARDED_BY(mutex);
  /// What a posted call holds weakly, to find out whether this object still lives.
  std::shared_ptr<property_monitor_engine_t*> self;
};

}  // namespace control_lib
