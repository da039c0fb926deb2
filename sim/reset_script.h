#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "sim/descriptor.h"
#include "sim/property_tree.h"
#include "sim/story.h"
#include "zyl/event_ptr.h"

namespace sim {

/// The factory reset script, which resets nothing: a program at `reset_script_path` that tells this object with which
/// arguments it was started, and ends as it is told. Loop thread only.
///
/// Properties:
///   "/sim/reset/script"     "present"; set it to "missing" to take the program away
///   "/sim/reset/does"       "exits 0"; set it to "exits N", "dies", by SIGKILL, or "runs": what the next one does
///   "/sim/reset/end"        set it to "exits N" or "dies": ends those that run
///   "/sim/reset/starts"     how often it was started
///   "/sim/reset/arguments"  the last one's, as in "--level=1"
///   "/sim/reset/running"    "1" while one runs
class reset_script_t {
 public:
  /// The tree must not change once this object is gone. Throws `std::system_error` if the script or the socket cannot
  /// be made.
  reset_script_t(event_base* base, property_tree_t& properties, story_t& story);
  ~reset_script_t();

  reset_script_t(const reset_script_t&) = delete;
  reset_script_t& operator=(const reset_script_t&) = delete;
  reset_script_t(reset_script_t&&) = delete;
  reset_script_t& operator=(reset_script_t&&) = delete;

 private:
  /// One that was started: it says its arguments, hears its end, and hangs up when it is gone, however it went.
  struct run_t {
    reset_script_t* owner = nullptr;
    descriptor_t socket;
    bool has_started = false;
    zyl::event_ptr_t readable;
  };

  static void on_connection(evutil_socket_t fd, short events, void* self);
  static void on_readable(evutil_socket_t fd, short events, void* run);
  void set_script(const std::string& wanted);
  void set_behaviour(const std::string& wanted);
  void end_all(const std::string& ending);
  void accept_run();
  void hear(run_t& run);
  void note_start(run_t& run, std::string_view arguments);
  void note_end(const run_t& run);
  void end(const run_t& run, const std::string& ending);
  void publish_running();

  event_base* base;
  property_tree_t& tree;
  story_t& story;
  std::string does = "exits 0";
  uint32_t starts = 0;
  descriptor_t listener;
  std::vector<std::unique_ptr<run_t>> runs;
  zyl::event_ptr_t connection;
};

/// Whether the text names an end: "dies", or "exits N" with N from 0 to 255.
bool is_script_ending(std::string_view text);

}  // namespace sim
