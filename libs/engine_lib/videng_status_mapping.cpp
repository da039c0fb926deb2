#include "engine_lib/videng_status_mapping.h"

#include <sys/mman.h>

#include <utility>

namespace videng {

status_mapping_t::status_mapping_t(int fd, std::size_t length) {
  void* start = mmap(nullptr, length, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
  if (start != MAP_FAILED) {
    bytes = {static_cast<std::byte*>(start), length};
  }
}

status_mapping_t::~status_mapping_t() {
  if (mapped()) {
    munmap(bytes.data(), bytes.size());
  }
}

status_mapping_t::status_mapping_t(status_mapping_t&& other) noexcept : bytes(std::exchange(other.bytes, {})) {}

status_mapping_t& status_mapping_t::operator=(status_mapping_t&& other) noexcept {
  std::swap(bytes, other.bytes);
  return *this;
}

}  // namespace videng
