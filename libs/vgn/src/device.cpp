#include "vgn/src/device.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cerrno>

namespace vgn {

device_t::~device_t() { device_t::close(); }

int device_t::open(const std::string& node) {
  close();
  descriptor = ::open(node.c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC);
  return descriptor >= 0 ? 0 : -errno;
}

void device_t::close() {
  if (descriptor >= 0) {
    ::close(descriptor);
    descriptor = -1;
  }
}

int device_t::ioctl(uint32_t request, void* record) { return ::ioctl(descriptor, request, record) >= 0 ? 0 : -errno; }

int64_t device_t::read(std::span<std::byte> buffer) {
  ssize_t count = 0;
  do {
    count = ::read(descriptor, buffer.data(), buffer.size());
  } while (count < 0 && errno == EINTR);
  return count >= 0 ? count : -errno;
}

}  // namespace vgn
