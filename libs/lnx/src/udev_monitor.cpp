#include "lnx/src/udev_monitor.h"

#include <utility>

#include "zyl/log/module_logger.h"

static auto& module_log = zyl::module_logger("lin_udev");
#include "zyl/log/log_bind.h"

namespace lnx {

udev_monitor_t::udev_monitor_t(event_base* base, std::string watched_subsystem, std::string watched_devtype)
    : udev_monitor_abc(std::move(watched_subsystem), std::move(watched_devtype)),
      notifier(event_new(base, fd(), EV_READ | EV_PERSIST, on_readable, static_cast<sk_notifier_handler_t*>(this))) {
  event_add(notifier.get(), nullptr);
}

void udev_monitor_t::device_added(const udev_device_t& device) {
  log_debug_s() << "added " << device;
  added.emit(device);
}

void udev_monitor_t::device_removed(const udev_device_t& device) {
  log_debug_s() << "removed " << device;
  removed.emit(device);
}

void udev_monitor_t::on_ready(int /*fd*/) { receive(); }

void udev_monitor_t::on_readable(evutil_socket_t fd, short /*events*/, void* handler) {
  static_cast<sk_notifier_handler_t*>(handler)->on_ready(fd);
}

}  // namespace lnx
