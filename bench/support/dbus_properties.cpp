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
constexpr const char* interface = "vgn.Bench.Properties";

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

int on_set(sd_bus_message* message, void* /*unused*/, sd_bus_error* /*error*/) {
  const char* path = nullptr;
  const char* value = nullptr;
  check(sd_bus_message_read(message, "ss", &path, &value), "the arguments of Set");
  return check(sd_bus_emit_signal(sd_bus_message_get_bus(message), object, interface, "Changed", "ss", path, value),
               "sd_bus_emit_signal");
}

const sd_bus_vtable methods[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Set", "ss", "", on_set, SD_BUS_VTABLE_UNPRIVILEGED),
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
  check(sd_bus_add_object_vtable(bus, nullptr, object, interface, methods, nullptr), "sd_bus_add_object_vtable");
  check(sd_bus_request_name(bus, name, 0), "sd_bus_request_name");
  tell_ready(ready_fd);
  for (;;) {
    turn(bus);
  }
}

dbus_properties_client_t::dbus_properties_client_t(const std::string& address) : bus(open_bus(address)) {
  check(sd_bus_match_signal(bus.get(), nullptr, nullptr, object, interface, "Changed", on_changed, this),
        "sd_bus_match_signal");
}

void dbus_properties_client_t::set_and_wait(const std::string& path, const std::string& value) {
  sd_bus_message* call = nullptr;
  check(sd_bus_message_new_method_call(bus.get(), &call, name, object, interface, "Set"), "a call of Set");
  const std::unique_ptr<sd_bus_message, decltype(&sd_bus_message_unref)> owned(call, sd_bus_message_unref);
  check(sd_bus_message_append(call, "ss", path.c_str(), value.c_str()), "the arguments of Set");
  check(sd_bus_message_set_expect_reply(call, 0), "sd_bus_message_set_expect_reply");
  check(sd_bus_send(bus.get(), call, nullptr), "sd_bus_send");
  for (told.clear(); told != value;) {
    turn(bus.get());
  }
}

int dbus_properties_client_t::on_changed(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
  const char* path = nullptr;
  const char* value = nullptr;
  check(sd_bus_message_read(message, "ss", &path, &value), "the arguments of Changed");
  static_cast<dbus_properties_client_t*>(self)->told = value;
  return 0;
}

}  // namespace bench
