#pragma once

#include <umockdev.h>

#include <string>
#include <utility>
#include <vector>

/// A machine with just the devices that a test adds, as libudev shows it. The process must run with umockdev's preload
/// library.
class udev_testbed_t {
 public:
  udev_testbed_t() : testbed(umockdev_testbed_new()) {}
  ~udev_testbed_t() { g_object_unref(testbed); }

  udev_testbed_t(const udev_testbed_t&) = delete;
  udev_testbed_t& operator=(const udev_testbed_t&) = delete;
  udev_testbed_t(udev_testbed_t&&) = delete;
  udev_testbed_t& operator=(udev_testbed_t&&) = delete;

  /// Makes the device and sends its event "add". Returns its path below /sys.
  std::string add(const char* subsystem, const char* name,
                  const std::vector<std::pair<std::string, std::string>>& properties = {}) {
    std::vector<gchar*> words;
    for (const auto& [property, value] : properties) {
      words.push_back(const_cast<gchar*>(property.c_str()));
      words.push_back(const_cast<gchar*>(value.c_str()));
    }
    words.push_back(nullptr);
    gchar* no_attributes[] = {nullptr};
    gchar* const made = umockdev_testbed_add_devicev(testbed, subsystem, name, nullptr, no_attributes, words.data());
    const std::string syspath(made != nullptr ? made : "");
    g_free(made);
    return syspath;
  }

  /// Sends the device's event `action`.
  void tell(const std::string& syspath, const char* action) {
    umockdev_testbed_uevent(testbed, syspath.c_str(), action);
  }

 private:
  UMockdevTestbed* testbed;
};
