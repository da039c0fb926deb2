#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace vgn {

/// The system calls on the streamer driver's misc device, and nothing else. One thread.
///
/// Calls give 0 (or a count) or a negative errno; on a device that is not open, -EBADF.
class device_t {
 public:
  device_t() = default;
  /// Closes.
  virtual ~device_t();

  device_t(const device_t&) = delete;
  device_t& operator=(const device_t&) = delete;
  device_t(device_t&&) = delete;
  device_t& operator=(device_t&&) = delete;

  /// Opens the node for reading and writing, without blocking. One that is open is closed first.
  virtual int open(const std::string& node);

  /// Closes it if it is open.
  virtual void close();

  /// The descriptor, to wait for event records with; -1 when it is not open. The device owns it.
  virtual int fd() const { return descriptor; }

  /// Sends `request` with its record, which the driver may write to.
  virtual int ioctl(uint32_t request, void* record);

  /// Reads what event bytes there are into `buffer`: their count, 0 at the end of a device that has gone, or a
  /// negative errno, -EAGAIN when there are none.
  virtual int64_t read(std::span<std::byte> buffer);

 private:
  int descriptor = -1;
};

}  // namespace vgn
