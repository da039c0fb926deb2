#include "lnx/src/ktm5030.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>

namespace lnx {
namespace {

int open_device() { return ::open("/dev/ktm5030", O_RDWR | O_CLOEXEC); }

/// The device for as long as this lives.
class open_device_t {
 public:
  open_device_t() : descriptor(open_device()) {}
  ~open_device_t() {
    if (descriptor >= 0) {
      ::close(descriptor);
    }
  }

  open_device_t(const open_device_t&) = delete;
  open_device_t& operator=(const open_device_t&) = delete;
  open_device_t(open_device_t&&) = delete;
  open_device_t& operator=(open_device_t&&) = delete;

  int fd() const { return descriptor; }

 private:
  int descriptor;
};

bool read_info(int fd, ktm5030_info_t& out_info) {
  ktm5030_info_t info;
  if (::ioctl(fd, ktm5030_read_info_request, &info) < 0) {
    return false;
  }
  out_info = info;
  return true;
}

uint32_t take_info(int fd, ktm5030_info_t& out_info) {
  if (!read_info(fd, out_info)) {
    out_info.first = 0;
    out_info.third = 0;
  }
  return ktm5030_info_change;
}

/// The change that the code means, 0 for an unknown one.
uint32_t take_event(int fd, uint32_t code, ktm5030_status_t& status) {
  switch (code) {
    case 0:
    case 1:
      status.signal = code == 0 ? 1 : 0;
      return ktm5030_signal_change;
    case 2:
      return take_info(fd, status.info);
    case 3:
    case 4:
      status.flag_a = code == 3 ? 1 : 0;
      return ktm5030_flag_a_change;
    case 5:
    case 6:
      status.flag_b = code == 5 ? 1 : 0;
      return ktm5030_flag_b_change;
    default:
      return 0;
  }
}

/// Whether reads of a node on which the last one gave `result` may still come to give events.
bool may_give_events(ssize_t result) {
  return result > 0 || (result < 0 && (errno == EINTR || errno == EAGAIN || errno == EIO));
}

/// False if there is no sense in another read.
bool read_event(int fd, ktm5030_status_t& status, uint32_t& changes) {
  uint32_t code = 0;
  const ssize_t size = ::read(fd, &code, sizeof code);
  if (size == ssize_t{sizeof code}) {
    changes |= take_event(fd, code, status);
    return true;
  }
  return may_give_events(size);
}

}  // namespace

uint8_t ktm5030_get_mode(uint32_t& out_mode) {
  const open_device_t device;
  uint8_t byte = 0;
  if (::ioctl(device.fd(), ktm5030_read_mode_request, &byte) < 0) {
    return 0;
  }
  out_mode = byte == 0 ? 0 : 2;
  return byte == 0 ? 1 : byte;
}

bool ktm5030_set_mode(uint32_t mode) {
  const open_device_t device;
  uint8_t byte = mode == 1 || mode == 2 ? 1 : 0;
  return ::ioctl(device.fd(), ktm5030_write_mode_request, &byte) >= 0;
}

bool ktm5030_read_info(ktm5030_status_t& status) { return read_info(open_device(), status.info); }

uint32_t ktm5030_poll_events(ktm5030_status_t& status) {
  const open_device_t device;
  return ktm5030_take_events(device.fd(), status);
}

uint32_t ktm5030_take_events(int fd, ktm5030_status_t& status) {
  uint32_t changes = 0;
  // For -1, which stands for a device that could not be opened, poll finds nothing.
  pollfd waiting{fd, POLLIN, 0};
  while (::poll(&waiting, 1, 0) > 0) {
    if ((waiting.revents & POLLIN) != 0 && !read_event(fd, status, changes)) {
      break;
    }
    if ((waiting.revents & (POLLERR | POLLHUP | POLLNVAL)) != 0) {
      break;
    }
  }
  return changes;
}

}  // namespace lnx
