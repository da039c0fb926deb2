#include "vgn/src/system.h"

#include <array>
#include <cerrno>
#include <span>
#include <utility>

#include "zyl/log/module_logger.h"

static auto& module_log = zyl::module_logger("drv_vgnstreamer");
#include "zyl/log/log_bind.h"

namespace vgn {

system_t::system_t(event_base* loop_base, std::unique_ptr<device_t> misc_device, bool use_udev)
    : base(loop_base), device(std::move(misc_device)) {
  if (!use_udev) {
    return;
  }
  // No device type: the driver's nodes are told apart by their names.
  monitor = std::make_unique<lnx::udev_monitor_t>(base, "misc", "");
  monitor->added.connect([this](const lnx::udev_device_t& came) { device_added(came); });
  monitor->removed.connect([this](const lnx::udev_device_t& gone) { device_removed(gone); });
}

system_t::~system_t() { detach(); }

void system_t::start() {
  if (started) {
    return;
  }
  if (monitor) {
    // Only what is there counts: udev may have failed to tell that the device went.
    device_name.clear();
    device_node.clear();
    monitor->scan();
  }
  started = true;
  attach();
}

void system_t::stop() {
  started = false;
  detach();
}

void system_t::device_added(const lnx::udev_device_t& came) {
  if (!came.sysname.starts_with("vgnsys-") || attached()) {
    return;
  }
  if (!device_name.empty() && came.sysname != device_name) {
    return;
  }
  device_name = came.sysname;
  device_node = came.devnode;
  if (started) {
    attach();
  }
}

void system_t::device_removed(const lnx::udev_device_t& gone) {
  if (device_name.empty() || gone.sysname != device_name) {
    return;
  }
  const bool was_attached = attached();
  detach();
  if (was_attached) {
    removed.emit(device_node);
  }
  const std::string gone_name = std::exchange(device_name, {});
  device_node.clear();
  take_other_than(gone_name);
}

// udev does not tell again of a device that came while we had another, and may still list the one that went.
void system_t::take_other_than(const std::string& gone_name) {
  if (!monitor) {
    return;
  }
  for (const auto& present : monitor->connected_devices()) {
    if (present.sysname != gone_name) {
      device_added(present);
    }
  }
}

void system_t::attach() {
  if (device_node.empty()) {
    return;
  }
  if (const int result = device->open(device_node); result < 0) {
    log_error_s() << "open " << device_node << " failed errno=" << -result;
    return;
  }
  zyl::event_ptr_t listener(event_new(base, device->fd(), EV_READ | EV_PERSIST, on_readable, this));
  if (!listener || event_add(listener.get(), nullptr) != 0) {
    log_error_s() << "listen to " << device_node << " failed";
    device->close();
    return;
  }
  read_event = std::move(listener);
  added.emit(device_node);
}

void system_t::detach() {
  read_event.reset();
  device->close();
}

void system_t::on_readable(evutil_socket_t /*fd*/, short /*events*/, void* self) {
  static_cast<system_t*>(self)->read_events();
}

void system_t::read_events() {
  std::array<vgn_event_t, 64> records{};
  while (attached()) {
    const int64_t size = device->read(std::as_writable_bytes(std::span(records)));
    if (size == -EAGAIN) {
      return;
    }
    if (size <= 0) {
      // A device that has gone stays readable; udev tells the rest.
      log_error_s() << "read " << device_node << " failed errno=" << -size;
      event_del(read_event.get());
      return;
    }
    const auto whole = std::span(records).first(static_cast<size_t>(size) / sizeof(vgn_event_t));
    for (const auto& record : whole) {
      if (!attached()) {
        return;  // a receiver of the record before has stopped us
      }
      link_changed.emit(record.id, record.type);
    }
  }
}

}  // namespace vgn
