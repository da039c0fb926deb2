#include "control_lib/src/session.h"

#include <unordered_map>
#include <utility>

#include "zyl/mutex.h"

namespace control_lib {
namespace {

struct registry_t {
  zyl::mutex_t mutex;
  std::unordered_map<std::string, session_t*> sessions ZYL_GUARDED_BY(mutex);
};

registry_t& registry() {
  static registry_t instance;
  return instance;
}

}  // namespace

session_t::session_t(std::string name) : session_name(std::move(name)) {
  registry_t& known = registry();
  const zyl::lock_t lock(known.mutex);
  known.sessions[session_name] = this;
}

session_t::~session_t() {
  registry_t& known = registry();
  const zyl::lock_t lock(known.mutex);
  const auto entry = known.sessions.find(session_name);
  if (entry != known.sessions.end() && entry->second == this) {
    known.sessions.erase(entry);
  }
}

session_t* session_t::find(const std::string& name) {
  registry_t& known = registry();
  const zyl::lock_t lock(known.mutex);
  const auto entry = known.sessions.find(name);
  return entry != known.sessions.end() ? entry->second : nullptr;
}

}  // namespace control_lib
