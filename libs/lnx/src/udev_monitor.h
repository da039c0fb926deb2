#pragma once

#include <event2/event.h>
#include <sigc++/sigc++.h>

#include <string>

#include "lnx/src/sk_notifier_handler.h"
#include "lnx/src/udev_monitor_abc.h"
#include "zyl/event_ptr.h"

namespace lnx {

/// The device monitor on an event loop: signals for devices that come and go. Thread of the loop, construction
/// included.
class udev_monitor_t : public udev_monitor_abc, public sk_notifier_handler_t {
 public:
  /// See `udev_monitor_abc`. `base` must outlive the monitor.
  udev_monitor_t(event_base* base, std::string subsystem, std::string devtype);

  void device_added(const udev_device_t& device) override;
  void device_removed(const udev_device_t& device) override;

  /// Called when the monitor has taken what made `fd` readable. For those who derive from it; does nothing by default.
  void on_ready(int /*fd*/) override {}

  /// A device came, or `scan` found it. A slot must not destroy the monitor.
  sigc::signal<void, udev_device_t> added;

  /// A device went. A slot must not destroy the monitor.
  sigc::signal<void, udev_device_t> removed;

 private:
  static void on_readable(evutil_socket_t fd, short events, void* monitor);

  zyl::event_ptr_t notifier;
};

}  // namespace lnx
