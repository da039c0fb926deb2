#include "app/fd_container.h"

#include <unistd.h>

#include <utility>

namespace vgn_control {

FdContainer::FdContainer(int owned_fd, Closer how_to_close) : closer(std::move(how_to_close)), fd(owned_fd) {}

FdContainer::~FdContainer() { reset(); }

void FdContainer::reset() {
  if (fd >= 0) {
    closer(fd);
    fd = -1;
  }
}

void FdContainer::closeDescriptor(int descriptor) { ::close(descriptor); }

}  // namespace vgn_control
