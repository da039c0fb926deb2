#pragma once

#include <sys/types.h>

#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "sim/descriptor.h"

namespace sim {

/// A program that this process started. One thread.
class child_process_t {
 public:
  struct options_t {
    /// Variables that it has beside ours, or in place of ours.
    std::map<std::string, std::string> environment;
    /// The file that its standard output and error are added to; empty: ours.
    std::string output_file;
  };

  /// Starts `command`, its first word looked up in PATH, with default signal actions and no signal blocked. Throws
  /// `std::system_error` if it cannot be started or watched.
  explicit child_process_t(const std::vector<std::string>& command, const options_t& options = {});

  /// Kills it if it still runs.
  ~child_process_t();

  child_process_t(const child_process_t&) = delete;
  child_process_t& operator=(const child_process_t&) = delete;
  child_process_t(child_process_t&&) = delete;
  child_process_t& operator=(child_process_t&&) = delete;

  pid_t pid() const { return process; }

  /// Becomes readable when it ends; valid as long as this object.
  int descriptor() const { return process_descriptor.get(); }

  /// Sends a signal. Nothing happens to one that has ended.
  void send_signal(int number) const;

  /// Waits until it ends and returns its status as a shell tells it, 128 + n after signal n; nothing when the limit
  /// is over.
  std::optional<int> wait(std::chrono::milliseconds limit);

  /// Ends it with `signal_number`, with SIGKILL when it is not gone after `limit`, and returns its status.
  int stop(int signal_number, std::chrono::milliseconds limit);

  /// Whether it has not ended.
  bool running() { return !wait(std::chrono::milliseconds(0)); }

 private:
  pid_t process = -1;
  descriptor_t process_descriptor;
  std::optional<int> status;
};

/// The folder of the running program, where the project's other programs are too.
std::string program_folder();

}  // namespace sim
