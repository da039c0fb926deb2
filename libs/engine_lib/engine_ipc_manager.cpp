#include "engine_lib/engine_ipc_manager.h"

#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <utility>

#include "zyl/assert.h"
#include "zyl/log/module_logger.h"

static auto& module_log = zyl::module_logger("eng_engine_ipc");
#include "zyl/log/log_bind.h"

namespace eipc {
namespace {

const char* const root_folder = "/var/tarn-engine-ipc/";

/// A line for whoever analyses the abort that mostly follows.
class log_critical_s : public zyl::log_base_s {
 public:
  explicit log_critical_s(unsigned line) : zyl::log_base_s(module_log, spdlog::level::critical) {
    *this << " [" << gettid() << "]: [" << __FILE__ << ":" << line << "] ";
  }
};

// An existing folder is the usual case; any other failure shows when the socket is bound in it.
void make_folder(const std::string& path) { static_cast<void>(mkdir(path.c_str(), 0700)); }

}  // namespace

std::unique_ptr<manager_t> manager_t::s_manager;

manager_t::manager_t(std::string own_name) : name(std::move(own_name)) { make_folder(root_folder); }

void manager_t::init(const std::string& name, unsigned id, bool verbose) {
  if (!s_manager) {
    s_manager.reset(new manager_t(name));
  }
  if (name != s_manager->name) {
    log_critical_s(__LINE__) << "eipc manager already created, name mismatch: " << name << " : " << s_manager->name;
    ZYL_ASSERT(false);
  }
  s_manager->create_socket(id, verbose);
}

void manager_t::create_socket(unsigned id, bool verbose) {
  make_folder(root_folder + std::to_string(id));
  const std::string path = socket_path(id);
  unlink(path.c_str());
  auto socket = std::make_unique<socket_t>();
  int err = socket->create(SOCK_DGRAM);
  ZYL_ASSERT(!err);
  err = socket->bind(path);
  ZYL_ASSERT(!err);
  err = socket->set_blocking(true);
  ZYL_ASSERT(!err);
  socket->verbose = verbose;
  sockets[id] = std::move(socket);
}

void manager_t::close(const std::string& name, unsigned id) {
  if (!s_manager || name != s_manager->name) {
    log_critical_s(__LINE__) << "eipc manager name mismatch: " << name << " : " << (s_manager ? s_manager->name : "");
    ZYL_ASSERT(false);
  }
  s_manager->close_socket(id);
}

void manager_t::close_socket(unsigned id) {
  const auto found = sockets.find(id);
  if (found == sockets.end()) {
    log_critical_s(__LINE__) << "no socket not found at " << id;
    return;
  }
  found->second->close();
  sockets.erase(found);
  unlink(socket_path(id).c_str());
}

socket_t& manager_t::sk(unsigned id) {
  ZYL_ASSERT(s_manager);
  const auto found = s_manager->sockets.find(id);
  if (found == s_manager->sockets.end()) {
    log_critical_s(__LINE__) << "socket not found at " << id;
    ZYL_ASSERT(false);
  }
  return *found->second;
}

std::string manager_t::get_name() {
  if (!s_manager) {
    log_critical_s(__LINE__) << "no eipc manager to grab name";
    return {};
  }
  return s_manager->name;
}

std::string manager_t::socket_path(unsigned id) const { return root_folder + std::to_string(id) + "/" + name; }

}  // namespace eipc
