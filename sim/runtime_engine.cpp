#include "sim/runtime_engine.h"

#include <chrono>
#include <exception>
#include <filesystem>
#include <fstream>
#include <thread>
#include <vector>

namespace sim {
namespace {

constexpr const char* process_property = "/sim/runtime_engine/process";
constexpr const char* name_property = "/sim/runtime_engine/name";
constexpr const char* programs_folder = "/tmp/.vgn-appliance.programs";

/// A name of its own for the program that sleeps: the kernel calls a process by the file that it was started from.
std::string program_of(const std::string& name) {
  const std::string program = std::string(programs_folder) + "/" + name;
  std::filesystem::create_directories(programs_folder);
  std::filesystem::remove(program);
  std::filesystem::create_symlink("/usr/bin/sleep", program);
  return program;
}

std::string name_of(pid_t process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/comm");
  std::string name;
  std::getline(file, name);
  return name;
}

/// The kernel lets the parent of a new program go on a moment before it gives the process its name. A name that cannot
/// be read back, as one with a line break, is not waited for longer than that takes.
void wait_for_name(const child_process_t& process, const std::string& name) {
  constexpr std::size_t longest_name = 15;
  const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(1);
  while (name_of(process.pid()) != name.substr(0, longest_name) && std::chrono::steady_clock::now() < limit) {
    std::this_thread::yield();
  }
}

}  // namespace

runtime_engine_t::runtime_engine_t(event_base* loop, const testbed_t& bed, property_tree_t& properties,
                                   story_t& told_story)
    : base(loop), testbed(bed), tree(properties), story(told_story) {
  tree.publish(process_property, "0");
  tree.publish(name_property, "runtime_engine");
  tree.on_set(process_property, [this](const std::string& wanted) { set_process(wanted); });
}

void runtime_engine_t::set_process(const std::string& wanted) {
  if (wanted == "1" || wanted == "0") {
    run(wanted == "1");
    return;
  }
  story.tell("appliance", "runtime engine's process cannot be \"", {wanted, "\""});
  tree.publish(process_property, process ? "1" : "0");
}

void runtime_engine_t::run(bool wanted) {
  if (wanted == process.has_value()) {
    return;
  }
  wanted ? start() : end();
  tree.publish(process_property, process ? "1" : "0");
}

void runtime_engine_t::start() {
  name = tree.value(name_property);
  try {
    process.emplace(std::vector<std::string>{program_of(name), "infinity"},
                    child_process_t::options_t{{}, "/dev/null"});
    wait_for_name(*process, name);
    show_process();
  } catch (const std::exception& error) {
    story.tell("appliance", error.what());
    process.reset();
    return;
  }
  ended.reset(event_new(base, process->descriptor(), EV_READ, on_ended, this));
  event_add(ended.get(), nullptr);
  story.tell("appliance", "process ", {name, " starts"});
}

void runtime_engine_t::show_process() {
  if (const std::string proc = testbed.root() + "/proc"; std::filesystem::exists(proc)) {
    const std::string id = std::to_string(process->pid());
    std::filesystem::create_symlink("/proc/" + id, proc + "/" + id);
    proc_link = proc + "/" + id;
  }
}

void runtime_engine_t::end() {
  if (!process) {
    return;
  }
  ended.reset();
  process.reset();
  if (!proc_link.empty()) {
    std::filesystem::remove(proc_link);
    proc_link.clear();
  }
  story.tell("appliance", "process ", {name, " ends"});
}

void runtime_engine_t::on_ended(evutil_socket_t /*fd*/, short /*events*/, void* self) {
  static_cast<runtime_engine_t*>(self)->run(false);
}

}  // namespace sim
