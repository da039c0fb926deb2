#include "lnx/src/udev_monitor.h"

#include <utility>

#include "zyl/assert.h"
#include "zyl/log/module_logger.h"

// Nothing is told yet; the name is there for those who set its level.
[[maybe_unused]] static auto& module_log = zyl::module_logger("lin_udev");

namespace lnx {

udev_monitor_t::udev_monitor_t(event_base* base, std::string watched_subsystem, std::string watched_devtype)
    : udev_monitor_abc(std::move(watched_subsystem), std::move(watched_devtype)),
      notifier(event_new(base, fd(), EV_READ | EV_PERSIST, on_readable, this)) {
  ZYL_ASSERT(notifier);
  ZYL_ASSERT(event_add(notifier.get(), nullptr) == 0);
}

void udev_monitor_t::device_added(const udev_device_t& device) { added.emit(device); }

void udev_monitor_t::device_removed(const udev_device_t& device) { removed.emit(device); }

void udev_monitor_t::on_readable(evutil_socket_t fd, short /*events*/, void* monitor) {
  auto* const self = static_cast<udev_monitor_t*>(monitor);
  self->receive();
  self->on_ready(fd);
}

}  // namespace lnx
