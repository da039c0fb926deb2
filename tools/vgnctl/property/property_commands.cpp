#include "tools/vgnctl/property/property_commands.h"

#include <CLI/CLI.hpp>
#include <cstdint>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "zyl/clock.h"
#include "zyl/property_client.h"

namespace vgnctl {
namespace {

constexpr int done = 0;
constexpr int service_failed = 1;
constexpr int bad_usage = 2;

constexpr int64_t answer_timeout_ms = 1000;
constexpr int no_timeout = -1;
constexpr std::size_t longest_frame = zyl::property_frame_header_size + 65535;

bool connect(zyl::property_client_t& client) {
  if (client.connect()) {
    return true;
  }
  std::cerr << "vgnctl: no property service at " << zyl::property_service_path << '\n';
  return false;
}

int tell_no_answer(const std::string& path) {
  std::cerr << "vgnctl: the property service gave no answer for " << path << '\n';
  return service_failed;
}

/// Asks for the value and waits for the answer, past whatever else the service says meanwhile.
bool read(zyl::property_client_t& client, const std::string& path, std::string& value) {
  const int64_t deadline = zyl::now_ms() + answer_timeout_ms;
  client.get(path);
  std::string command;
  std::string about;
  for (int64_t left = answer_timeout_ms; left > 0 && !client.hung_up(); left = deadline - zyl::now_ms()) {
    client.receive(command, about, value, static_cast<int>(left));
    if (command == "get_response" && about == path) {
      return true;
    }
    if (command == "error" && about == "no_property") {
      value.clear();
      return true;
    }
  }
  return false;
}

int get(const std::string& path) {
  zyl::property_client_t client;
  if (!connect(client)) {
    return service_failed;
  }
  std::string value;
  if (!read(client, path, value)) {
    return tell_no_answer(path);
  }
  std::cout << path << '=' << value << '\n';
  return done;
}

int set(const std::string& path, const std::string& value) {
  if (zyl::build_frame({"set", path, value}).size() > longest_frame) {
    std::cerr << "vgnctl: path and value are too long for the property service\n";
    return bad_usage;
  }
  zyl::property_client_t client;
  if (!connect(client)) {
    return service_failed;
  }
  // A request has no answer of its own. Once a later one is answered, the service has done this one too.
  std::string ignored;
  if (!client.set(path, value) || !read(client, path, ignored)) {
    return tell_no_answer(path);
  }
  return done;
}

int monitor(const std::vector<std::string>& paths) {
  zyl::property_client_t client;
  if (!connect(client)) {
    return service_failed;
  }
  for (const std::string& path : paths) {
    client.monitor(path);
  }
  std::string command;
  std::string path;
  std::string value;
  while (!client.hung_up()) {
    if (client.receive(command, path, value, no_timeout) && command == "changed") {
      std::cout << path << '=' << value << std::endl;
    }
  }
  std::cerr << "vgnctl: the property service has gone\n";
  return service_failed;
}

void add_get(CLI::App& group, int& status) {
  auto path = std::make_shared<std::string>();
  CLI::App* command = group.add_subcommand("get", "Print a property as path=value; a missing one is empty");
  command->add_option("PATH", *path, "path of the property")->required();
  command->callback([&status, path] { status = get(*path); });
}

void add_set(CLI::App& group, int& status) {
  auto path = std::make_shared<std::string>();
  auto value = std::make_shared<std::string>();
  CLI::App* command = group.add_subcommand("set", "Write a property; put -- in front of a value that begins with -");
  command->add_option("PATH", *path, "path of the property")->required();
  command->add_option("VALUE", *value, "its new value")->required();
  command->callback([&status, path, value] { status = set(*path, *value); });
}

void add_monitor(CLI::App& group, int& status) {
  auto paths = std::make_shared<std::vector<std::string>>();
  CLI::App* command = group.add_subcommand("monitor", "Print each change as path=value until interrupted");
  command->add_option("PATH", *paths, "paths of the properties")->required();
  command->callback([&status, paths] { status = monitor(*paths); });
}

}  // namespace

void add_property_commands(CLI::App& app, int& status) {
  CLI::App* group = app.add_subcommand("property", "Read, write and watch the properties of the appliance");
  group->require_subcommand(1);
  add_get(*group, status);
  add_set(*group, status);
  add_monitor(*group, status);
}

}  // namespace vgnctl
