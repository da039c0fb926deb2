#pragma once

#include <map>
#include <string>

#include "sim/descriptor.h"
#include "sim/property_tree.h"
#include "sim/story.h"
#include "zyl/event_ptr.h"

namespace sim {

/// The files below /sys that tell how the hardware is: temperatures, fan, voltages and the board's own status. A board
/// that is warm, fed by power over Ethernet of class 4, its fan at half power.
///
/// Properties, <name> being what the file is called, such as "temp4_input", "pwm1" or "poe_class":
///   "/sim/hardware/<name>"  what the file holds, without its line end; "" for an empty file, "absent" for none. Set it
///                           to change the file; it follows when a program writes the file, of several quick writes
///                           the last one. A write that the simulation replaces before it has seen it is not told
/// Loop thread only.
class status_files_t {
 public:
  /// The files stand below the folder `root`. The references must outlive this object. Throws `std::system_error` if
  /// they cannot be made or watched.
  status_files_t(event_base* base, std::string root, property_tree_t& tree, story_t& story);

  status_files_t(const status_files_t&) = delete;
  status_files_t& operator=(const status_files_t&) = delete;
  status_files_t(status_files_t&&) = delete;
  status_files_t& operator=(status_files_t&&) = delete;
  ~status_files_t() = default;

 private:
  static void on_written(evutil_socket_t fd, short events, void* self);
  void add(const std::string& path, const std::string& content);
  void write(const std::string& path, const std::string& content);
  void watch_file(const std::string& made, const std::string& path);
  void take_written();
  void tell_written(const std::string& path);

  std::string root;
  property_tree_t& tree;
  story_t& story;
  descriptor_t notifier;
  /// By path: the watch of the file that stands there. A file that was replaced has another one.
  std::map<std::string, int> watches;
  zyl::event_ptr_t written;
};

}  // namespace sim
