#pragma once

#include <map>
#include <string>
#include <vector>

#include "sim/remote/child_process.h"
#include "sim/remote/remote_control.h"

namespace sim {

/// The simulated appliance as a child process of ours, in the same sandbox.
class appliance_process_t {
 public:
  struct options_t {
    int model = 106;
    std::string story_file = "/tmp/story";
    /// Where what it prints goes; empty: to our own output.
    std::string output_file;
  };

  /// Starts "vgn-appliance" from our program's folder and waits until it serves everything. Throws
  /// `std::runtime_error` if it does not.
  explicit appliance_process_t(const options_t& options);
  appliance_process_t() : appliance_process_t(options_t()) {}

  child_process_t& process() { return child; }

 private:
  child_process_t child;
};

/// The daemon as a child process of ours, the unmodified program in the environment that the appliance asks for. Its
/// objects must die before the appliance's.
class daemon_process_t {
 public:
  struct options_t {
    /// The keys' device is added to them, unless they name one by "--input".
    std::vector<std::string> arguments;
    /// Beside what the appliance asks for; libraries to preload are joined.
    std::map<std::string, std::string> environment;
    /// Where what it prints goes; empty: to our own output.
    std::string output_file;
  };

  /// Starts "vgn_control" from our program's folder. Throws `std::system_error` if it cannot be started.
  daemon_process_t(remote_control_t& remote, const options_t& options);
  explicit daemon_process_t(remote_control_t& remote) : daemon_process_t(remote, options_t()) {}

  child_process_t& process() { return child; }

 private:
  child_process_t child;
};

/// The variables that a program needs to see the appliance's devices, as it publishes them below "/sim/environment/".
std::map<std::string, std::string> device_environment(remote_control_t& remote);

}  // namespace sim
