#include "sim/status_files.h"

#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <system_error>
#include <utility>

namespace sim {
namespace {

struct file_t {
  const char* path;
  const char* content;
};

constexpr std::array<file_t, 19> files{{
    {"/sys/class/hwmon/hwmon0/temp4_input", "41500"},
    {"/sys/class/hwmon/hwmon0/temp1_input", "38250"},
    {"/sys/class/hwmon/hwmon0/pwm1_enable", "1"},
    {"/sys/class/hwmon/hwmon0/pwm1", "128"},
    {"/sys/class/hwmon/hwmon0/fan1_input", "3150"},
    {"/sys/class/hwmon/hwmon0/custom/pwm1_ramp_rate", "16"},
    {"/sys/bus/iio/devices/iio:device0/in_voltage29_vccaux14_raw", "34193"},
    {"/sys/bus/iio/devices/iio:device0/in_voltage30_vccaux15_raw", "39085"},
    {"/sys/bus/iio/devices/iio:device0/in_temp2_pl_temp_offset", "-36058"},
    {"/sys/bus/iio/devices/iio:device0/in_temp2_pl_temp_raw", "42100"},
    {"/sys/bus/iio/devices/iio:device0/in_temp2_pl_temp_scale", "7.771514892"},
    {"/sys/bus/iio/devices/iio:device0/in_temp0_ps_temp_offset", "-36058"},
    {"/sys/bus/iio/devices/iio:device0/in_temp0_ps_temp_raw", "42350"},
    {"/sys/bus/iio/devices/iio:device0/in_temp0_ps_temp_scale", "7.771514892"},
    {"/sys/devices/platform/xk_status/aux_status", "0"},
    {"/sys/devices/platform/xk_status/poe_status", "1"},
    {"/sys/devices/platform/xk_status/poe_class", "4"},
    {"/sys/devices/platform/xk_status/board_id", "2"},
    {"/sys/devices/platform/xk_status/product_id", "1"},
}};

constexpr const char* no_file = "absent";

std::string name_of(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::string property_of(const std::string& path) { return "/sim/hardware/" + name_of(path); }

/// The content without the end of its last line.
std::string content_of(const std::string& place) {
  std::ifstream file(place, std::ios::binary);
  std::string content{std::istreambuf_iterator<char>(file), {}};
  if (content.ends_with('\n')) {
    content.pop_back();
  }
  return content;
}

}  // namespace

status_files_t::status_files_t(event_base* base, std::string root_folder, property_tree_t& properties, story_t& told)
    : root(std::move(root_folder)),
      tree(properties),
      story(told),
      notifier(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
      written(event_new(base, notifier.get(), EV_READ | EV_PERSIST, on_written, this)) {
  for (const auto& [path, content] : files) {
    add(path, content);
  }
  event_add(written.get(), nullptr);
}

void status_files_t::add(const std::string& path, const std::string& content) {
  std::filesystem::create_directories(std::filesystem::path(root + path).parent_path());
  write(path, content);
  tree.publish(property_of(path), content);
  tree.on_set(property_of(path), [this, path](const std::string& value) { write(path, value); });
}

// Moved to its place complete, so that a reader never meets half a value, and nobody takes it for a program's write.
void status_files_t::write(const std::string& path, const std::string& content) {
  if (content == no_file) {
    watches.erase(path);
    std::filesystem::remove(root + path);
    return;
  }
  const std::string made = root + "/next_status_file";
  std::ofstream(made, std::ios::binary) << content << (content.empty() ? "" : "\n");
  watch_file(made, path);
  std::filesystem::rename(made, root + path);
}

void status_files_t::watch_file(const std::string& made, const std::string& path) {
  const int watch = inotify_add_watch(notifier.get(), made.c_str(), IN_CLOSE_WRITE);
  if (watch < 0) {
    throw std::system_error(errno, std::generic_category(), "cannot watch " + path);
  }
  watches[path] = watch;
}

void status_files_t::on_written(evutil_socket_t /*fd*/, short /*events*/, void* self) {
  static_cast<status_files_t*>(self)->take_written();
}

void status_files_t::take_written() {
  std::set<int> seen;
  alignas(inotify_event) std::array<char, 4096> buffer{};
  for (ssize_t count = 0; (count = ::read(notifier.get(), buffer.data(), buffer.size())) > 0;) {
    for (ssize_t at = 0; at < count;) {
      inotify_event event{};
      std::memcpy(&event, buffer.data() + at, sizeof event);
      if ((event.mask & IN_CLOSE_WRITE) != 0) {
        seen.insert(event.wd);
      }
      at += static_cast<ssize_t>(sizeof event + event.len);
    }
  }
  for (const auto& [path, watch] : watches) {
    if (seen.contains(watch)) {
      tell_written(path);
    }
  }
}

void status_files_t::tell_written(const std::string& path) {
  const std::string content = content_of(root + path);
  story.tell("hardware", name_of(path) + " is written: " + content);
  tree.publish(property_of(path), content);
}

}  // namespace sim
