#include "sim/brightness_setting.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstring>
#include <filesystem>
#include <utility>

#include "sim/descriptor.h"

namespace sim {

brightness_setting_t::brightness_setting_t(property_tree_t& properties, story_t& told_story, std::string file_path)
    : story(told_story), path(std::move(file_path)) {
  std::filesystem::create_directories(std::filesystem::path(path).parent_path());
  properties.publish("/sim/led/setting", "");
  properties.on_set("/sim/led/setting", [this](const std::string& text) { write(text); });
}

// Emptied after the write, not before: a program that watches the file would read it empty in between.
void brightness_setting_t::write(const std::string& text) const {
  const descriptor_t file(open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644));
  const auto size = static_cast<ssize_t>(text.size());
  if (!file || pwrite(file.get(), text.data(), text.size(), 0) != size || ftruncate(file.get(), size) != 0) {
    story.tell("panel", "cannot write ", {path, ": ", std::strerror(errno)});
    return;
  }
  story.tell("panel", "brightness setting is \"", {text, "\""});
}

}  // namespace sim
