#include "control_lib/src/property_monitor_engine.h"

#include <new>

#include "control_lib/src/event_base_manager.h"
#include "zyl/log/module_logger.h"
#include "zyl/post.h"

static auto& module_log = zyl::module_logger("ctl_property_monitor");
#include "zyl/log/log_bind.h"

namespace control_lib {

// Freeing in the plain way would wait for a callback that runs on the loop thread and wants the lock that the freeing
// thread holds.
void property_monitor_engine_t::event_deleter_t::operator()(event* freed) const {
  event_free_finalize(0, freed, [](event* /*freed*/, void* /*self*/) {});
}

property_monitor_engine_t::property_monitor_engine_t(event_base* loop_base)
    : session_t("property_monitor_engine_t"),
      base(loop_base),
      self(std::make_shared<property_monitor_engine_t*>(this)) {
  property_monitor_engine_t::connect();
}

property_monitor_engine_t::property_monitor_engine_t(event_base_manager_t& worker)
    : property_monitor_engine_t(worker.event_base()) {}

void property_monitor_engine_t::connect() {
  const zyl::lock_t lock(mutex);
  // The loop must forget the old descriptor before it is closed, as the new one may get the same number.
  socket_event.reset();
  if (!client.connect()) {
    log_error_s() << "property_monitor_eb_t property_engine connect failed";
    return;
  }
  socket_event.reset(event_new(base, client.descriptor(), EV_READ | EV_PERSIST, on_socket_event, this));
  if (!socket_event || event_add(socket_event.get(), nullptr) != 0) {
    socket_event.reset();
    client.disconnect();
    throw std::bad_alloc();
  }
  for (const auto& [path, listeners] : observers) {
    send_prop_monitor(path);
  }
  log_debug_s() << "property_monitor_eb_t::connect() CONNECTED";
}

void property_monitor_engine_t::monitor(const std::string& path, property_observer_eb_t* observer) {
  const zyl::lock_t lock(mutex);
  log_debug_s() << "property_monitor_eb_t::monitor " << path;
  auto& listeners = observers[path];
  const bool known = !listeners.empty();
  listeners.push_back(observer);
  schedule(known ? &property_monitor_engine_t::send_get : &property_monitor_engine_t::send_prop_monitor, path);
}

bool property_monitor_engine_t::set(const std::string& path, const std::string& value) {
  const zyl::lock_t lock(mutex);
  return client.is_connected() && client.set(path, value);
}

void property_monitor_engine_t::schedule(send_t send, const std::string& path) {
  zyl::post(base, [weak = std::weak_ptr(self), send, path] {
    if (const auto engine = weak.lock()) {
      const zyl::lock_t lock((*engine)->mutex);
      ((*engine)->*send)(path);
    }
  });
}

void property_monitor_engine_t::send_prop_monitor(const std::string& path) {
  log_debug_s() << "property_monitor_eb_t::send_prop_monitor " << path << connection_text();
  if (client.is_connected()) {
    client.create(path);
    client.get(path);
    client.monitor(path);
  }
}

void property_monitor_engine_t::send_get(const std::string& path) {
  log_debug_s() << "property_monitor_eb_t::send_get " << path << connection_text();
  if (client.is_connected()) {
    client.get(path);
  }
}

const char* property_monitor_engine_t::connection_text() {
  return client.is_connected() ? " (connected)" : " (not connected)";
}

void property_monitor_engine_t::on_socket_event(evutil_socket_t /*fd*/, short /*events*/, void* self) {
  static_cast<property_monitor_engine_t*>(self)->poll();
}

void property_monitor_engine_t::poll() {
  const zyl::lock_t lock(mutex);
  log_debug_s() << "property_monitor_eb_t::poll";
  auto& [command, path, value] = received;
  while (client.receive(command, path, value, 0)) {
    log_debug_s() << "property_monitor_eb_t::on_socket_event " << command << ' ' << path << ' ' << value;
    dispatch(command, path, value);
  }
  // A descriptor that was hung up would wake the loop without end.
  if (client.hung_up()) {
    event_del(socket_event.get());
  }
}

void property_monitor_engine_t::dispatch(const std::string& command, const std::string& path,
                                         const std::string& value) {
  const auto entry = observers.find(path);
  if (entry == observers.end()) {
    return;
  }
  const auto tell = [&listeners = entry->second](property_response_e kind, const std::string& told_path,
                                                 const std::string& told_value) {
    for (property_observer_eb_t* observer : listeners) {
      observer->on_property(kind, told_path, told_value);
    }
  };
  if (command == "get_response") {
    answered.insert(path);
    tell(property_response_e::get, path, value);
  } else if (command == "changed") {
    answered.insert(path);
    tell(property_response_e::changed, path, value);
  } else if (command == "error") {
    // The service names the property in the third field.
    tell(property_response_e::no_prop_error, value, "");
  }
}

}  // namespace control_lib
