#include "bench/support/dbus_properties.h"

#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>

#include "bench/support/peer_process.h"

namespace bench {
namespace {

constexpr const char* name = "vgn.Bench";
constexpr const char* object = "/vgn/bench";
constexpr const char* interface = "vgn.Bench.Screen";

int check(int result, const char* what) {
  if (result < 0) {
    throw std::system_error(-result, std::generic_category(), what);
  }
  return result;
}

sd_bus* open_bus(const std::string& address) {
  sd_bus* bus = nullptr;
  check(sd_bus_new(&bus), "sd_bus_new");
  check(sd_bus_set_address(bus, address.c_str()), "sd_bus_set_address");
  check(sd_bus_set_bus_client(bus, 1), "sd_bus_set_bus_client");
  check(sd_bus_start(bus), "sd_bus_start");
  return bus;
}

/// One turn: handles what has come, or waits for more.
void turn(sd_bus* bus) {
  if (check(sd_bus_process(bus, nullptr), "sd_bus_process") == 0) {
    check(sd_bus_wait(bus, UINT64_MAX), "sd_bus_wait");
  }
}

int on_set(sd_bus_message* message, void* /*served*/, sd_bus_error* /*error*/) {
  const char* value = nullptr;
  check(sd_bus_message_read(message, "s", &value), "the argument of Set");
  return check(sd_bus_emit_signal(sd_bus_message_get_bus(message), object, interface, "Changed", "s", value),
               "sd_bus_emit_signal");
}

int on_set_property(sd_bus* bus, const char* /*path*/, const char* /*interface*/, const char* /*property*/,
                    sd_bus_message* message, void* served, sd_bus_error* /*error*/) {
  const char* value = nullptr;
  check(sd_bus_message_read(message, "s", &value), "the value of Text");
  *static_cast<std::string*>(served) = value;
  return check(sd_bus_emit_properties_changed(bus, object, interface, "Text", nullptr),
               "sd_bus_emit_properties_changed");
}

int on_get_property(sd_bus* /*bus*/, const char* /*path*/, const char* /*interface*/, const char* /*property*/,
                    sd_bus_message* reply, void* served, sd_bus_error* /*error*/) {
  return sd_bus_message_append(reply, "s", static_cast<std::string*>(served)->c_str());
}

const sd_bus_vtable members[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Set", "s", "", on_set, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_WRITABLE_PROPERTY("Text", "s", on_get_property, on_set_property, 0,
                             SD_BUS_VTABLE_PROPERTY_EMITS_CHANGE | SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_VTABLE_END,
};

}  // namespace

void run_dbus_daemon(const std::string& address, int ready_fd) {
  const std::string listen = "--address=" + address;
  const std::string print = "--print-address=" + std::to_string(ready_fd);  // which it does once it listens
  execlp("dbus-daemon", "dbus-daemon", "--session", "--nofork", "--nopidfile", listen.c_str(), print.c_str(), nullptr);
  throw std::system_error(errno, std::generic_category(), "dbus-daemon");
}

void serve_dbus_properties(const std::string& address, int ready_fd) {
  sd_bus* bus = open_bus(address);
  std::string text;
  check(sd_bus_add_object_vtable(bus, nullptr, object, interface, members, &text), "sd_bus_add_object_vtable");
  check(sd_bus_request_name(bus, name, 0), "sd_bus_request_name");
  tell_ready(ready_fd);
  for (;;) {
    turn(bus);
  }
}

dbus_properties_client_t::dbus_properties_client_t(const std::string& address) : bus(open_bus(address)) {
  check(sd_bus_match_signal(bus.get(), nullptr, nullptr, object, interface, "Changed", on_changed, this),
        "sd_bus_match_signal");
  check(sd_bus_match_signal(bus.get(), nullptr, nullptr, object, "org.freedesktop.DBus.Properties", "PropertiesChanged",
                            on_properties_changed, this),
        "sd_bus_match_signal");
}

void dbus_properties_client_t::set_property_and_wait(const std::string& value) {
  check(sd_bus_set_property(bus.get(), name, object, interface, "Text", nullptr, "s", value.c_str()),
        "sd_bus_set_property");
  wait_for(value);
}

void dbus_properties_client_t::call_and_wait(const std::string& value) {
  sd_bus_message* call = nullptr;
  check(sd_bus_message_new_method_call(bus.get(), &call, name, object, interface, "Set"), "a call of Set");
  const std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)> owned(call, sd_bus_message_unref);
  check(sd_bus_message_append(call, "s", value.c_str()), "the argument of Set");
  check(sd_bus_message_set_expect_reply(call, 0), "sd_bus_message_set_expect_reply");
  check(sd_bus_send(bus.get(), call, nullptr), "sd_bus_send");
  wait_for(value);
}

void dbus_properties_client_t::wait_for(const std::string& value) {
  while (told != value) {
    turn(bus.get());
  }
}

int dbus_properties_client_t::on_changed(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
  const char* value = nullptr;
  check(sd_bus_message_read(message, "s", &value), "the argument of Changed");
  static_cast<dbus_properties_client_t*>(self)->told = value;
  return 0;
}

int dbus_properties_client_t::on_properties_changed(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
  const char* changed_interface = nullptr;
  const char* property = nullptr;
  const char* value = nullptr;
  check(sd_bus_message_read(message, "sa{sv}", &changed_interface, 1, &property, "s", &value), "a changed property");
  static_cast<dbus_properties_client_t*>(self)->told = value;
  return 0;
}

}  // namespace bench
