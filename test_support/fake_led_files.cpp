#include "test_support/fake_led_files.h"

#include <fcntl.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace test_support {

namespace fs = std::filesystem;

namespace {

std::string content_of(const std::string& place) {
  std::ifstream file(place);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

fake_led_files_t::fake_led_files_t(const fake_udev_t& emulated)
    : machine(emulated), watch(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)) {}

fake_led_files_t::~fake_led_files_t() { close(watch); }

void fake_led_files_t::make(const std::string& path) {
  // Not opened for writing, so that this does not count as a write.
  close(open(place_for(path).c_str(), O_CREAT | O_RDONLY | O_CLOEXEC, 0644));
}

void fake_led_files_t::make_unwritable(const std::string& path) { fs::create_directory(place_for(path)); }

void fake_led_files_t::make_full(const std::string& path) { fs::create_symlink("/dev/full", place_for(path)); }

void fake_led_files_t::remove(const std::string& path) { fs::remove_all(machine.place(path)); }

std::vector<std::string> fake_led_files_t::take_writes() {
  std::vector<std::string> writes;
  const auto closed = closed_files();
  for (const auto& place : closed) {
    const fs::path file(place);
    writes.push_back((file.parent_path().filename() / file.filename()).string() + "=" + content_of(place));
  }
  for (const auto& place : closed) {
    fs::resize_file(place, 0);
  }
  return writes;
}

std::string fake_led_files_t::place_for(const std::string& path) {
  remove(path);
  const fs::path place = machine.place(path);
  fs::create_directories(place.parent_path());
  // The openings are only there to part the writes: the kernel merges equal events that follow each other.
  const int folder = inotify_add_watch(watch, place.parent_path().c_str(), IN_OPEN | IN_CLOSE_WRITE);
  watched_folders[folder] = place.parent_path();
  return place;
}

std::vector<std::string> fake_led_files_t::closed_files() {
  std::vector<std::string> places;
  alignas(inotify_event) std::array<char, 4096> events{};
  for (;;) {
    const ssize_t length = read(watch, events.data(), events.size());
    if (length <= 0) {
      return places;
    }
    for (const char* at = events.data(); at < events.data() + length;) {
      inotify_event event{};
      std::memcpy(&event, at, sizeof event);
      if ((event.mask & IN_CLOSE_WRITE) != 0) {
        places.push_back(watched_folders.at(event.wd) + "/" + (at + sizeof event));
      }
      at += sizeof event + event.len;
    }
  }
}

}  // namespace test_support
