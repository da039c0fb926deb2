#pragma once

#include <string>

#include "sim/property_tree.h"
#include "sim/story.h"

namespace sim {

/// The user's choice of how bright the lamp is: setting "/sim/led/setting" writes its text, "Off", "Dim", "Bright" or
/// any other, into the file that keeps it. The file is written in place, as a settings page does it, and the first
/// bytes of a longer text never show without the rest. There is no file before the first choice.
class brightness_setting_t {
 public:
  static constexpr const char* default_path = "/var/rwfs2/led_brightness";

  /// The tree must not change once this object is gone.
  brightness_setting_t(property_tree_t& properties, story_t& story, std::string path = default_path);

  brightness_setting_t(const brightness_setting_t&) = delete;
  brightness_setting_t& operator=(const brightness_setting_t&) = delete;
  brightness_setting_t(brightness_setting_t&&) = delete;
  brightness_setting_t& operator=(brightness_setting_t&&) = delete;
  ~brightness_setting_t() = default;

 private:
  void write(const std::string& text) const;

  story_t& story;
  std::string path;
};

}  // namespace sim
