#include "sim/remote/appliance_process.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <stdexcept>
#include <utility>

#include "zyl/property_client.h"

namespace sim {
namespace {

bool is_ready() {
  zyl::property_client_t client;
  std::string ready;
  return client.connect() && client.read("/sim/ready", ready, 1000) && ready == "1";
}

std::vector<std::string> appliance_command(const appliance_process_t::options_t& options) {
  return {program_folder() + "/vgn-appliance", "--model", std::to_string(options.model), "--story", options.story_file};
}

bool names_input(const std::string& argument) { return argument == "--input" || argument.starts_with("--input="); }

std::vector<std::string> daemon_command(remote_control_t& remote, const std::vector<std::string>& arguments) {
  std::vector<std::string> command{program_folder() + "/vgn_control"};
  if (std::none_of(arguments.begin(), arguments.end(), names_input)) {
    command.insert(command.end(), {"--input", remote.value("/sim/key/path")});
  }
  command.insert(command.end(), arguments.begin(), arguments.end());
  return command;
}

/// A list of preloaded libraries, or of options of a sanitizer, is taken apart at colons.
void join(std::map<std::string, std::string>& variables, const std::string& name, const std::string& value) {
  std::string& joined = variables[name];
  joined += (joined.empty() ? "" : ":") + value;
}

std::map<std::string, std::string> daemon_environment(remote_control_t& remote,
                                                      const std::map<std::string, std::string>& more) {
  std::map<std::string, std::string> variables = device_environment(remote);
#if defined(__SANITIZE_ADDRESS__)
  // The preload library of the devices comes before the sanitizer's, which it would otherwise refuse.
  const char* inherited = std::getenv("ASAN_OPTIONS");  // NOLINT(concurrency-mt-unsafe): nothing sets variables here
  variables["ASAN_OPTIONS"] = inherited != nullptr ? inherited : "";
  join(variables, "ASAN_OPTIONS", "verify_asan_link_order=0");
#elif defined(__SANITIZE_THREAD__)
  // Qt orders its threads by futexes, which the sanitizer does not see; so it must not judge what Qt reads and writes
  // by way of the C library.
  const char* inherited = std::getenv("TSAN_OPTIONS");  // NOLINT(concurrency-mt-unsafe): nothing sets variables here
  variables["TSAN_OPTIONS"] = inherited != nullptr ? inherited : "";
  join(variables, "TSAN_OPTIONS", "ignore_noninstrumented_modules=1");
#endif
  for (const auto& [name, value] : more) {
    if (name == "LD_PRELOAD" || name == "ASAN_OPTIONS" || name == "TSAN_OPTIONS") {
      join(variables, name, value);
    } else {
      variables[name] = value;
    }
  }
  return variables;
}

}  // namespace

appliance_process_t::appliance_process_t(const options_t& options)
    : child(appliance_command(options), {{}, options.output_file}) {
  const auto deadline = std::chrono::steady_clock::now() + generous_limit;
  while (!is_ready()) {
    if (const auto status = child.wait(std::chrono::milliseconds(2))) {
      throw std::runtime_error("vgn-appliance ended with status " + std::to_string(*status));
    }
    if (std::chrono::steady_clock::now() >= deadline) {
      throw std::runtime_error("vgn-appliance serves nothing");
    }
  }
}

daemon_process_t::daemon_process_t(remote_control_t& remote, const options_t& options)
    : child(daemon_command(remote, options.arguments),
            {daemon_environment(remote, options.environment), options.output_file}) {}

std::map<std::string, std::string> device_environment(remote_control_t& remote) {
  const std::string folder = "/sim/environment/";
  std::map<std::string, std::string> variables;
  for (const auto& [path, value] : remote.below(folder)) {
    variables[path.substr(folder.size())] = value;
  }
  return variables;
}

}  // namespace sim
