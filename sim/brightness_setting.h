#pragma once

#include <string>

#include "sim/descriptor.h"
#include "sim/property_tree.h"
#include "sim/story.h"
#include "zyl/event_ptr.h"

namespace sim {

/// The user's choice of how bright the lamp is, in the file that keeps it. There is none before the first choice. Loop
/// thread only.
///
/// Properties:
///   "/sim/led/setting"  what the file holds, without its line end, or "absent" for no file; it follows when a program
///                       writes the file, makes it or takes it away. Set it to write a text, "Off", "Dim", "Bright" or
///                       any other, or to "absent" to take the file away
///
/// The file is written in place, as a settings page does it, and the first bytes of a longer text never show without
/// the rest.
class brightness_setting_t {
 public:
  static constexpr const char* default_path = "/var/rwfs2/led_brightness";

  /// The references must outlive this object, and the tree must not change once it is gone. Throws `std::system_error`
  /// if the folder of the file cannot be made or watched.
  brightness_setting_t(event_base* base, property_tree_t& properties, story_t& story, std::string path = default_path);

  brightness_setting_t(const brightness_setting_t&) = delete;
  brightness_setting_t& operator=(const brightness_setting_t&) = delete;
  brightness_setting_t(brightness_setting_t&&) = delete;
  brightness_setting_t& operator=(brightness_setting_t&&) = delete;
  ~brightness_setting_t() = default;

 private:
  static void on_event(evutil_socket_t fd, short events, void* self);
  void watch_folder();
  void take_events();
  void set(const std::string& text);
  bool write(const std::string& text) const;
  void remove();
  void publish();

  property_tree_t& tree;
  story_t& story;
  std::string path;
  descriptor_t notifier;
  zyl::event_ptr_t changed;
};

}  // namespace sim
