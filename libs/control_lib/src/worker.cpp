#include "control_lib/src/worker.h"

#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <exception>
#include <fstream>
#include <string>
#include <thread>

#include "control_lib/src/source_tag.h"
#include "control_lib/src/worker_manager.h"
#include "zyl/log/module_logger.h"

static auto& module_log = zyl::module_logger("ctl_worker");
#include "zyl/log/log_bind.h"

namespace control_lib {

struct worker_t::record_t {
  std::thread thread;
  std::string description;
  /// The thread's own entry: it may ask for it before `thread` is assigned.
  std::atomic<std::thread::id> id{};
};

worker_t::worker_t(worker_manager_t& manager, const char* description) : record(std::make_unique<record_t>()) {
  record->description = description != nullptr ? description : "(no description)";
  manager.add(this);
}

worker_t::~worker_t() = default;

void worker_t::spawn() {
  try {
    record->thread = std::thread([this] { work(); });
  } catch (const std::exception& error) {
    log_error_s() << source_tag("src/worker", __LINE__) << "Failed to start worker thread: " << error.what();
  }
}

bool worker_t::joinable() const { return record->thread.joinable(); }

bool worker_t::is_current_thread() const { return record->id == std::this_thread::get_id(); }

void worker_t::join() { record->thread.join(); }

void worker_t::work() {
  record->id = std::this_thread::get_id();
  const int id = gettid();
  const std::string pid_file = "/var/run/workers/worker_" + std::to_string(id) + ".pid";
  // Not checked: the file is for people, the worker works without.
  std::ofstream(pid_file) << record->description << '\n';
  run_and_tell(id);
  std::remove(pid_file.c_str());
  // The id may be another thread's soon.
  record->id = std::thread::id();
}

void worker_t::run_and_tell(int id) {
  try {
    run();
  } catch (const std::exception& error) {
    log_error_s() << "Worker [" << record->description << "(" << id << ") died from an exception: " << error.what();
  } catch (...) {
    log_error_s() << "Worker [" << record->description << "(" << id << ") died from an unknown exception";
  }
}

}  // namespace control_lib
