#pragma once

#include <string>

#include "lnx/src/udev_device.h"

namespace lnx {

/// The devices of one subsystem and device type: those that are there, and those that come and go.
///
/// libudev not doing what it always does marks a broken system and ends the process. One thread.
class udev_monitor_abc {
 public:
  /// Watches `subsystem`, and in it the devices of `devtype` or, when that is empty, all. Without a libudev context
  /// the object has no monitor, and every use of it ends the process.
  udev_monitor_abc(std::string subsystem, std::string devtype);
  virtual ~udev_monitor_abc() = default;

  udev_monitor_abc(const udev_monitor_abc&) = delete;
  udev_monitor_abc& operator=(const udev_monitor_abc&) = delete;
  udev_monitor_abc(udev_monitor_abc&&) = delete;
  udev_monitor_abc& operator=(udev_monitor_abc&&) = delete;

  /// Calls `device_added` for each device that is there now.
  virtual void scan();

  virtual void device_added(const udev_device_t& device) = 0;
  virtual void device_removed(const udev_device_t& device) = 0;

  /// The devices that are there now, in libudev's order. One that goes while this looks is left out.
  udev_devices_t connected_devices() const;

  /// The descriptor that is readable when an event waits. The monitor owns it.
  int fd() const;

 protected:
  /// Takes one event from the monitor and calls `device_added` or `device_removed` for it; ignores other actions.
  void receive();

 private:
  const char* devtype_or_null() const { return devtype.empty() ? nullptr : devtype.c_str(); }

  std::string subsystem;
  std::string devtype;
  zyl::intrusive_ptr<udev> context;
  zyl::intrusive_ptr<udev_monitor> monitor;
};

}  // namespace lnx
