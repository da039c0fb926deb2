#include "lnx/src/udev_monitor_abc.h"

#include <string_view>
#include <utility>

#include "zyl/assert.h"

namespace lnx {

udev_monitor_abc::udev_monitor_abc(std::string watched_subsystem, std::string watched_devtype)
    : subsystem(std::move(watched_subsystem)), devtype(std::move(watched_devtype)), context(udev_new()) {
  if (!context) {
    return;
  }
  auto* const m_monitor = udev_monitor_new_from_netlink(context.get(), "udev");
  ZYL_ASSERT(m_monitor);
  monitor = zyl::intrusive_ptr<udev_monitor>(m_monitor);
  bool err = udev_monitor_filter_add_match_subsystem_devtype(m_monitor, subsystem.c_str(), devtype_or_null()) < 0;
  ZYL_ASSERT(!err);
  err = udev_monitor_enable_receiving(m_monitor) < 0;
  ZYL_ASSERT(!err);
}

void udev_monitor_abc::scan() {
  for (const auto& device : connected_devices()) {
    device_added(device);
  }
}

udev_devices_t udev_monitor_abc::connected_devices() const {
  const zyl::intrusive_ptr<udev_enumerate> enumerate(udev_enumerate_new(context.get()));
  bool err = !context || !enumerate;
  ZYL_ASSERT(!err);
  err = udev_enumerate_add_match_subsystem(enumerate.get(), subsystem.c_str()) < 0;
  ZYL_ASSERT(!err);
  if (!devtype.empty()) {
    err = udev_enumerate_add_match_property(enumerate.get(), "DEVTYPE", devtype.c_str()) < 0;
    ZYL_ASSERT(!err);
  }
  err = udev_enumerate_scan_devices(enumerate.get()) < 0;
  ZYL_ASSERT(!err);

  udev_devices_t devices;
  for (auto* entry = udev_enumerate_get_list_entry(enumerate.get()); entry != nullptr;
       entry = udev_list_entry_get_next(entry)) {
    zyl::intrusive_ptr<udev_device> device(
        udev_device_new_from_syspath(context.get(), udev_list_entry_get_name(entry)));
    if (device) {
      devices.emplace_back(std::move(device));
    }
  }
  return devices;
}

int udev_monitor_abc::fd() const {
  auto* const m_monitor = monitor.get();
  ZYL_ASSERT(m_monitor);
  return udev_monitor_get_fd(m_monitor);
}

void udev_monitor_abc::receive() {
  auto* const mon = monitor.get();
  ZYL_ASSERT(mon);
  const zyl::intrusive_ptr<udev_device> received(udev_monitor_receive_device(mon));
  if (!received) {
    return;  // the kernel woke us for a message that the filter then refused
  }
  const udev_device_t device(received);
  const char* const action = udev_device_get_action(received.get());
  if (action == nullptr) {
    return;
  }
  if (std::string_view(action) == "add") {
    device_added(device);
  } else if (std::string_view(action) == "remove") {
    device_removed(device);
  }
}

}  // namespace lnx
