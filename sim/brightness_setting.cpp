#include "sim/brightness_setting.h"

#include <fcntl.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

namespace sim {
namespace {

constexpr const char* property = "/sim/led/setting";
constexpr const char* no_file = "absent";

/// The content without the end of its last line.
std::string content_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file.is_open()) {
    return no_file;
  }
  std::string content{std::istreambuf_iterator<char>(file), {}};
  if (content.ends_with('\n')) {
    content.pop_back();
  }
  return content;
}

}  // namespace

brightness_setting_t::brightness_setting_t(event_base* base, property_tree_t& properties, story_t& told_story,
                                           std::string file_path)
    : tree(properties),
      story(told_story),
      path(std::move(file_path)),
      notifier(inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
      changed(event_new(base, notifier.get(), EV_READ | EV_PERSIST, on_event, this)) {
  watch_folder();
  event_add(changed.get(), nullptr);
  tree.on_set(property, [this](const std::string& text) { set(text); });
  tree.publish(property, content_of(path));
}

// The folder, not the file: that one comes and goes.
void brightness_setting_t::watch_folder() {
  const std::filesystem::path folder = std::filesystem::path(path).parent_path();
  std::filesystem::create_directories(folder);
  constexpr uint32_t events = IN_CLOSE_WRITE | IN_DELETE | IN_MOVED_FROM | IN_MOVED_TO;
  if (inotify_add_watch(notifier.get(), folder.c_str(), events) < 0) {
    throw std::system_error(errno, std::generic_category(), "cannot watch " + folder.string());
  }
}

void brightness_setting_t::on_event(evutil_socket_t /*fd*/, short /*events*/, void* self) {
  static_cast<brightness_setting_t*>(self)->take_events();
}

// What has happened does not matter, since the file itself tells.
void brightness_setting_t::take_events() {
  std::array<char, 4096> buffer{};
  while (::read(notifier.get(), buffer.data(), buffer.size()) > 0) {
  }
  publish();
}

void brightness_setting_t::publish() {
  if (const std::string content = content_of(path); content != tree.value(property)) {
    tree.publish(property, content);
  }
}

void brightness_setting_t::set(const std::string& text) {
  if (text == no_file) {
    remove();
  } else if (write(text)) {
    story.tell("panel", "brightness setting is \"", {text, "\""});
  } else {
    story.tell("panel", "cannot write ", {path, ": ", std::strerror(errno)});
  }
  publish();
}

// Emptied after the write, not before: a program that watches the file would read it empty in between.
bool brightness_setting_t::write(const std::string& text) const {
  const descriptor_t file(open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
  const auto size = static_cast<ssize_t>(text.size());
  return file && pwrite(file.get(), text.data(), text.size(), 0) == size && ftruncate(file.get(), size) == 0;
}

void brightness_setting_t::remove() {
  std::error_code ignored;  // what is there now is published anyway
  if (std::filesystem::remove(path, ignored)) {
    story.tell("panel", "brightness setting is removed");
  }
}

}  // namespace sim
