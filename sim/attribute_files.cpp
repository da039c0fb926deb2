#include "sim/attribute_files.h"

#include <fcntl.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <filesystem>
#include <system_error>
#include <utility>

namespace sim {
namespace {

[[noreturn]] void fail(const std::string& what) { throw std::system_error(errno, std::generic_category(), what); }

std::string content_of(int fd) {
  std::string text;
  std::array<char, 4096> chunk{};
  for (ssize_t count = 0; (count = pread(fd, chunk.data(), chunk.size(), static_cast<off_t>(text.size()))) > 0;) {
    text.append(chunk.data(), static_cast<std::size_t>(count));
  }
  return text;
}

}  // namespace

attribute_files_t::attribute_files_t(event_base* base, std::string root_folder, write_handler_t handler)
    : root(std::move(root_folder)),
      on_write(std::move(handler)),
      notifier(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
      lease_break(evsignal_new(base, SIGIO, on_lease_break, this)),
      closed(event_new(base, notifier.get(), EV_READ | EV_PERSIST, on_closed, this)) {
  if (!notifier) {
    fail("cannot watch files");
  }
  event_add(lease_break.get(), nullptr);
  event_add(closed.get(), nullptr);
}

void attribute_files_t::add(const std::string& path) {
  std::filesystem::create_directories(std::filesystem::path(root + path).parent_path());
  waiting[path] = put_new(path);
}

void attribute_files_t::remove(const std::string& path) {
  const auto found = waiting.find(path);
  if (found == waiting.end()) {
    return;
  }
  unlink((root + path).c_str());
  // Without its last attribute the folder goes too: nobody can make a file there, no more than in sysfs.
  rmdir(std::filesystem::path(root + path).parent_path().c_str());
  forget(found->second);
  waiting.erase(found);
  std::erase_if(opened, [this, &path](const auto& entry) {
    const bool is_it = entry.second.path == path;
    if (is_it) {
      forget(entry.second);
    }
    return is_it;
  });
}

// Somebody's open may wait for the end of the lease, and then gets a file that nobody hears.
void attribute_files_t::forget(const file_t& file) {
  inotify_rm_watch(notifier.get(), file.watch);
  fcntl(file.descriptor.get(), F_SETLEASE, F_UNLCK);
}

// A lease for reading is broken by whoever opens for writing. The file comes to its place complete, so that nobody
// finds one without a lease there.
attribute_files_t::file_t attribute_files_t::put_new(const std::string& path) {
  const std::string target = root + path;
  const std::string made = target + ".next";
  file_t file{path, -1, descriptor_t(open(made.c_str(), O_RDONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666))};
  if (!file.descriptor || fcntl(file.descriptor.get(), F_SETLEASE, F_RDLCK) != 0) {
    fail("cannot make " + target);
  }
  file.watch = inotify_add_watch(notifier.get(), made.c_str(), IN_CLOSE_WRITE);
  if (file.watch < 0 || rename(made.c_str(), target.c_str()) != 0) {
    fail("cannot make " + target);
  }
  return file;
}

void attribute_files_t::on_lease_break(evutil_socket_t /*number*/, short /*events*/, void* self) {
  static_cast<attribute_files_t*>(self)->let_openers_in();
}

void attribute_files_t::let_openers_in() {
  for (auto& [path, file] : waiting) {
    if (fcntl(file.descriptor.get(), F_GETLEASE) == F_RDLCK) {
      continue;
    }
    file_t old = std::exchange(file, put_new(path));
    fcntl(old.descriptor.get(), F_SETLEASE, F_UNLCK);
    opened.emplace(old.watch, std::move(old));
  }
}

void attribute_files_t::on_closed(evutil_socket_t /*fd*/, short /*events*/, void* self) {
  static_cast<attribute_files_t*>(self)->take_closed();
}

void attribute_files_t::take_closed() {
  alignas(inotify_event) std::array<char, 4096> buffer{};
  for (ssize_t count = 0; (count = read(notifier.get(), buffer.data(), buffer.size())) > 0;) {
    for (ssize_t at = 0; at < count;) {
      inotify_event event{};
      std::memcpy(&event, buffer.data() + at, sizeof event);
      at += static_cast<ssize_t>(sizeof event + event.len);
      if ((event.mask & IN_CLOSE_WRITE) != 0) {
        take(event.wd);
      }
    }
  }
}

void attribute_files_t::take(int watch) {
  const auto found = opened.find(watch);
  if (found == opened.end()) {
    return;
  }
  const file_t file = std::move(found->second);
  opened.erase(found);
  if (const std::string text = content_of(file.descriptor.get()); !text.empty()) {
    on_write(file.path, text);
  }
}

}  // namespace sim
