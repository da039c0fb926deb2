#pragma once

#include <systemd/sd-bus.h>

#include <memory>
#include <string>

namespace bench {

/// Becomes a dbus-daemon with the distribution's configuration of a session bus, listening at `address`. For a process
/// of its own.
[[noreturn]] void run_dbus_daemon(const std::string& address, int ready_fd);

/// Serves that bus: a call of "Set" with a path and a value makes the signal "Changed" with the same, which is the
/// least that D-Bus can be asked for. For a process of its own.
[[noreturn]] void serve_dbus_properties(const std::string& address, int ready_fd);

/// Its client, which hears all changes. One thread.
class dbus_properties_client_t {
 public:
  /// Throws `std::system_error` if the bus does not take it.
  explicit dbus_properties_client_t(const std::string& address);

  /// Sets the property, as the standard interface has it with an answer, and waits until the change is told.
  void set_property_and_wait(const std::string& value);

  /// Calls the bare method, wanting no answer, and waits for the bare signal: the least that D-Bus can be asked for.
  void call_and_wait(const std::string& value);

 private:
  struct closer_t {
    void operator()(sd_bus* owned) const { sd_bus_flush_close_unref(owned); }
  };

  void wait_for(const std::string& value);
  static int on_changed(sd_bus_message* message, void* self, sd_bus_error* error);
  static int on_properties_changed(sd_bus_message* message, void* self, sd_bus_error* error);

  std::unique_ptr<sd_bus, closer_t> bus;
  std::string told;
};

}  // namespace bench
