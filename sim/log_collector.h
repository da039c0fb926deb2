#pragma once

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "sim/descriptor.h"
#include "sim/property_tree.h"
#include "sim/story.h"
#include "zyl/event_ptr.h"

namespace sim {

/// Stands for the system's log daemon: receives the datagrams of `syslog` on "/dev/log".
///
/// Each becomes a line without its priority and time, "vgn_control: text", at the end of the log file, in the story as
/// "log", and in "/sim/log/last"; "/sim/log/file" names the file. Loop thread only.
class log_collector_t {
 public:
  static constexpr const char* default_path = "/dev/log";

  /// Collects from now on into `log_file`, which is emptied. Throws `std::system_error` if `path` or `log_file` cannot
  /// be made.
  log_collector_t(event_base* base, property_tree_t& tree, story_t& story, const std::string& log_file,
                  const std::string& path = default_path);

  log_collector_t(const log_collector_t&) = delete;
  log_collector_t& operator=(const log_collector_t&) = delete;
  log_collector_t(log_collector_t&&) = delete;
  log_collector_t& operator=(log_collector_t&&) = delete;
  ~log_collector_t() = default;

 private:
  struct closer_t {
    void operator()(std::FILE* open_file) const { std::fclose(open_file); }
  };

  static void on_datagram(evutil_socket_t fd, short events, void* self);
  void collect();
  void record(std::string_view datagram);

  property_tree_t& tree;
  story_t& story;
  std::unique_ptr<std::FILE, closer_t> file;
  descriptor_t socket;
  zyl::event_ptr_t datagram_event;
};

/// The line that a datagram of `syslog` means: without "<priority>", the time that follows it and the line break at the
/// end. Text in another form stays as it is.
std::string_view line_of_datagram(std::string_view datagram);

}  // namespace sim
