#pragma once

#include <iosfwd>
#include <map>
#include <string>
#include <vector>

#include "lnx/src/udev_ptr.h"

namespace lnx {

/// What udev tells about a device, as text; empty where it tells nothing. Made by naming the fields that matter.
struct udev_device_fields_t {
  std::string devpath = {};
  std::string subsystem = {};
  std::string devtype = {};
  std::string syspath = {};
  std::string sysname = {};
  std::string sysnum = {};
  std::string devnode = {};
  std::map<std::string, std::string> properties = {};
  std::vector<std::string> tags = {};
};

/// A snapshot of one device, taken when it is constructed. A value: copies share nothing but the device handle.
class udev_device_t : public udev_device_fields_t {
 public:
  /// A device without a udev handle.
  explicit udev_device_t(udev_device_fields_t fields);

  /// Takes everything out of `source`, which must not be null. A property that is listed twice ends the process.
  explicit udev_device_t(zyl::intrusive_ptr<udev_device> source);

  /// The device, for later reads of its attributes; empty if the snapshot was made from plain fields.
  zyl::intrusive_ptr<udev_device> device;
};

using udev_devices_t = std::vector<udev_device_t>;

/// Writes all fields on one line, then the properties and the tags, one a line.
std::ostream& operator<<(std::ostream& stream, const udev_device_t& device);

}  // namespace lnx
