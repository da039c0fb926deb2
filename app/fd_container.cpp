#include "app/fd_container.h"

#include <unistd.h>

#include <utility>

namespace vgn_control {

FdContainer::FdContainer(int owned_fd, Closer how_to_close) : closer(std::move(how_to_close)), fd(owned_fd) {}

FdContainer::~FdContainer() { reset(); }

void FdContainer::reset() {
  // Forgotten even if the closer throws, so that nothing is closed twice.
  const int descriptor = std::exchange(fd, -1);
  if (descriptor >= 0) {
    closer(descriptor);
  }
}

void FdContainer::closeDescriptor(int descriptor) { ::close(descriptor); }

}  // namespace vgn_control
