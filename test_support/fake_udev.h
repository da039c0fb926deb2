#pragma once

#include <umockdev.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

namespace test_support {

/// A machine with just the devices and the files below /sys and /proc that a test gives it, as libudev and the file
/// calls show it. The process must run with umockdev's preload library; one at a time.
class fake_udev_t {
 public:
  fake_udev_t() : testbed(umockdev_testbed_new()) {}
  ~fake_udev_t() { g_object_unref(testbed); }

  fake_udev_t(const fake_udev_t&) = delete;
  fake_udev_t& operator=(const fake_udev_t&) = delete;
  fake_udev_t(fake_udev_t&&) = delete;
  fake_udev_t& operator=(fake_udev_t&&) = delete;

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
    std::string syspath(made != nullptr ? made : "");
    g_free(made);
    return syspath;
  }

  /// Sends the device's event `action`.
  void tell(const std::string& syspath, const char* action) {
    umockdev_testbed_uevent(testbed, syspath.c_str(), action);
  }

  /// Takes the device away, without an event.
  void remove(const std::string& syspath) { umockdev_testbed_remove_device(testbed, syspath.c_str()); }

  /// Gives the file at an absolute path below /sys or /proc this content.
  void write(const std::string& path, const std::string& content) {
    const std::filesystem::path file = place(path);
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << content;
  }

  /// Where an absolute path of the machine really is.
  std::string place(const std::string& path) const {
    gchar* const root = umockdev_testbed_get_root_dir(testbed);
    std::string found = root + path;
    g_free(root);
    return found;
  }

  /// The emulation library's own object; lives as long as this one.
  UMockdevTestbed* handle() const { return testbed; }

 private:
  UMockdevTestbed* testbed;
};

}  // namespace test_support
