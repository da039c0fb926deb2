#include "lnx/src/udev_device.h"

#include <ostream>
#include <utility>

#include "zyl/assert.h"

namespace lnx {
namespace {

std::string text_of(const char* text) { return text != nullptr ? text : ""; }

std::map<std::string, std::string> properties_of(udev_device* device) {
  std::map<std::string, std::string> properties;
  for (auto* entry = udev_device_get_properties_list_entry(device); entry != nullptr;
       entry = udev_list_entry_get_next(entry)) {
    const auto res =
        properties.emplace(text_of(udev_list_entry_get_name(entry)), text_of(udev_list_entry_get_value(entry)));
    ZYL_ASSERT(res.second);
  }
  return properties;
}

std::vector<std::string> tags_of(udev_device* device) {
  std::vector<std::string> tags;
  for (auto* entry = udev_device_get_tags_list_entry(device); entry != nullptr;
       entry = udev_list_entry_get_next(entry)) {
    tags.push_back(text_of(udev_list_entry_get_name(entry)));
  }
  return tags;
}

udev_device_fields_t fields_of(udev_device* device) {
  return {
      .devpath = text_of(udev_device_get_devpath(device)),
      .subsystem = text_of(udev_device_get_subsystem(device)),
      .devtype = text_of(udev_device_get_devtype(device)),
      .syspath = text_of(udev_device_get_syspath(device)),
      .sysname = text_of(udev_device_get_sysname(device)),
      .sysnum = text_of(udev_device_get_sysnum(device)),
      .devnode = text_of(udev_device_get_devnode(device)),
      .properties = properties_of(device),
      .tags = tags_of(device),
  };
}

}  // namespace

udev_device_t::udev_device_t(udev_device_fields_t fields) : udev_device_fields_t(std::move(fields)) {}

udev_device_t::udev_device_t(zyl::intrusive_ptr<udev_device> source)
    : udev_device_fields_t(fields_of(source.get())), device(std::move(source)) {}

std::ostream& operator<<(std::ostream& stream, const udev_device_t& device) {
  stream << "udev_device_t(devpath=" << device.devpath << ", subsystem=" << device.subsystem
         << ", devtype=" << device.devtype << ", syspath=" << device.syspath << ", sysname=" << device.sysname
         << ", sysnum=" << device.sysnum << ", devnode=" << device.devnode << "\n  Properties(\n";
  for (const auto& [name, value] : device.properties) {
    stream << "    " << name << "=" << value << "\n";
  }
  stream << "),\n  Tags(\n";
  for (const auto& tag : device.tags) {
    stream << "    " << tag << "\n";
  }
  return stream << ")";
}

}  // namespace lnx
