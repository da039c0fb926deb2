#pragma once

#include <optional>
#include <string>

#include "sim/property_tree.h"
#include "sim/remote/child_process.h"
#include "sim/story.h"
#include "sim/testbed.h"
#include "zyl/event_ptr.h"

namespace sim {

/// Stands for the process that executes the customer's design: a real process of that name, which does nothing. At
/// first it does not run. What it tells of itself, "/sys/runtimeengine/state", stays apart.
///
/// Properties:
///   "/sim/runtime_engine/process"  "1" or "0"; set it to start or end the process
///   "/sim/runtime_engine/name"     "runtime_engine"; the name of the next one, of which the kernel keeps 15 characters
///
/// The emulation shows only its own entries of "/proc/" once it has any: then the process is put among them. Loop
/// thread only.
class runtime_engine_t {
 public:
  /// All arguments by reference must outlive this object; the tree must not change once it is gone.
  runtime_engine_t(event_base* base, const testbed_t& testbed, property_tree_t& properties, story_t& story);
  ~runtime_engine_t() { end(); }

  runtime_engine_t(const runtime_engine_t&) = delete;
  runtime_engine_t& operator=(const runtime_engine_t&) = delete;
  runtime_engine_t(runtime_engine_t&&) = delete;
  runtime_engine_t& operator=(runtime_engine_t&&) = delete;

 private:
  static void on_ended(evutil_socket_t fd, short events, void* self);
  void set_process(const std::string& wanted);
  void run(bool wanted);
  void start();
  void show_process();
  void end();

  event_base* base;
  const testbed_t& testbed;
  property_tree_t& tree;
  story_t& story;
  std::string name;  ///< of the one that runs
  std::string proc_link;
  std::optional<child_process_t> process;
  zyl::event_ptr_t ended;
};

}  // namespace sim
