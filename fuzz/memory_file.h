#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <string>
#include <string_view>

#include "fuzz/target.h"

namespace fuzz {

/// A file that is in memory alone, for readers that take a path. It is kept for the life of the process.
class memory_file_t {
 public:
  memory_file_t() : fd(::memfd_create("fuzz", MFD_CLOEXEC)) { require(fd >= 0, "a file in memory"); }

  void replace(std::string_view content) const {
    require(::ftruncate(fd, 0) == 0, "the file is emptied");
    require(::pwrite(fd, content.data(), content.size(), 0) == static_cast<ssize_t>(content.size()), "and filled");
  }

  std::string path() const { return "/proc/self/fd/" + std::to_string(fd); }

 private:
  int fd;
};

}  // namespace fuzz
