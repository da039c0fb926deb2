#pragma once

#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

namespace test_support {

/// Sees which files of one folder are opened, by whomever. The folder must exist.
class opened_files_t {
 public:
  explicit opened_files_t(const std::string& folder) : fd(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {
    EXPECT_GE(::inotify_add_watch(fd, folder.c_str(), IN_OPEN), 0) << folder;
  }
  ~opened_files_t() { ::close(fd); }

  opened_files_t(const opened_files_t&) = delete;
  opened_files_t& operator=(const opened_files_t&) = delete;
  opened_files_t(opened_files_t&&) = delete;
  opened_files_t& operator=(opened_files_t&&) = delete;

  /// The names since the last call, in the order of their opening. Several in a row of one file may be told once.
  std::vector<std::string> take() const {
    std::vector<std::string> names;
    alignas(inotify_event) std::array<char, 4096> buffer{};
    ssize_t size = 0;
    while ((size = ::read(fd, buffer.data(), buffer.size())) > 0) {
      for (std::size_t at = 0; at < static_cast<std::size_t>(size);) {
        inotify_event event{};
        std::memcpy(&event, buffer.data() + at, sizeof event);
        names.emplace_back(buffer.data() + at + sizeof event);
        at += sizeof event + event.len;
      }
    }
    return names;
  }

 private:
  int fd;
};

}  // namespace test_support
