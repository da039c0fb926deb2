#pragma once

#include <umockdev.h>

#include <array>
#include <cstdint>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "test_support/fake_udev.h"
#include "zyl/mutex.h"

namespace test_support {

/// "/dev/ktm5030" on a machine of the test's: its bytes, its events, and what it was asked. The process must run with
/// umockdev's preload library; the machine must outlive this.
///
/// The node is a terminal, because a device that hangs up while a client has it open is easily made of one.
class fake_ktm5030_t {
 public:
  explicit fake_ktm5030_t(fake_udev_t& machine);
  ~fake_ktm5030_t();

  fake_ktm5030_t(const fake_ktm5030_t&) = delete;
  fake_ktm5030_t& operator=(const fake_ktm5030_t&) = delete;
  fake_ktm5030_t(fake_ktm5030_t&&) = delete;
  fake_ktm5030_t& operator=(fake_ktm5030_t&&) = delete;

  /// The mode byte that it has, and gives.
  void set_mode_byte(uint8_t byte);
  uint8_t mode_byte() const;

  void set_info(uint32_t first, uint32_t second, uint32_t third);

  /// From now on this request fails with EIO.
  void fail(uint32_t request);

  /// The next read fails with this errno; the event that it would have given is gone.
  void fail_next_read(int error);

  /// Hangs up when this request has been answered: from then on reads give nothing, and poll tells POLLHUP.
  void hang_up_at(uint32_t request);

  /// Makes an event readable.
  void tell(uint32_t code);
  /// Makes these bytes readable.
  void tell_bytes(std::span<const uint8_t> bytes);

  /// The descriptors by which this process has it open.
  std::vector<int> open_descriptors() const;
  /// The requests of all clients so far.
  std::vector<uint32_t> requests() const;
  /// How often it was read from.
  int reads() const;

 private:
  static gboolean on_ioctl(UMockdevIoctlBase* handler, UMockdevIoctlClient* client, gpointer self);
  static gboolean on_read(UMockdevIoctlBase* handler, UMockdevIoctlClient* client, gpointer self);

  int answer(uint32_t request, std::span<uint8_t> record);
  int failing_read();

  fake_udev_t& machine;
  /// What the node really is.
  std::string terminal;
  mutable zyl::mutex_t mutex;
  UMockdevIoctlBase* handler;
  int events ZYL_GUARDED_BY(mutex) = -1;
  /// Keeps what waits to be read while no client has the node open.
  int reader = -1;
  uint8_t mode ZYL_GUARDED_BY(mutex) = 0;
  std::array<uint32_t, 3> info ZYL_GUARDED_BY(mutex) = {};
  std::set<uint32_t> failing ZYL_GUARDED_BY(mutex);
  int next_read_error ZYL_GUARDED_BY(mutex) = 0;
  uint32_t last_request ZYL_GUARDED_BY(mutex) = 0;  // 0: none
  std::vector<uint32_t> asked ZYL_GUARDED_BY(mutex);
  int read_count ZYL_GUARDED_BY(mutex) = 0;
};

}  // namespace test_support
