#pragma once

#include <umockdev.h>

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "test_support/fake_udev.h"
#include "zyl/mutex.h"

namespace test_support {

/// An evdev device on a machine of the test's: what it was asked for, and reads that fail as the test wishes. The
/// process must run with umockdev's preload library; the machine must outlive this.
class fake_key_device_t {
 public:
  static constexpr const char* path = "/dev/input/event0";

  explicit fake_key_device_t(fake_udev_t& machine);
  ~fake_key_device_t();

  fake_key_device_t(const fake_key_device_t&) = delete;
  fake_key_device_t& operator=(const fake_key_device_t&) = delete;
  fake_key_device_t(fake_key_device_t&&) = delete;
  fake_key_device_t& operator=(fake_key_device_t&&) = delete;

  /// Makes these bytes readable. Any thread.
  void feed(std::string_view bytes) const;

  /// Asked at each read to come, on a thread of its own: the errno that the read fails with, 0 for what was fed.
  void on_read(std::function<int()> asked);

  /// From now on every request fails with this errno.
  void refuse(int error);

  /// What clients have asked for so far: "grab 0", "repeat 400 80".
  std::vector<std::string> requests() const;

  /// How often it was read from.
  int reads() const;

 private:
  static gboolean handle_ioctl(UMockdevIoctlBase* handler, UMockdevIoctlClient* client, gpointer self);
  static gboolean handle_read(UMockdevIoctlBase* handler, UMockdevIoctlClient* client, gpointer self);

  int note(std::string request);
  int asked_to_read();

  fake_udev_t& machine;
  UMockdevIoctlBase* handler;
  int feeder = -1;
  mutable zyl::mutex_t mutex;
  std::function<int()> read_result ZYL_GUARDED_BY(mutex);
  int refusal ZYL_GUARDED_BY(mutex) = 0;
  std::vector<std::string> asked_for ZYL_GUARDED_BY(mutex);
  int read_count ZYL_GUARDED_BY(mutex) = 0;
};

}  // namespace test_support
