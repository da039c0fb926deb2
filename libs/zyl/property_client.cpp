#include "zyl/property_client.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstring>

#include "zyl/log/module_logger.h"

namespace zyl {
namespace {

// Failures are told by results alone. The logger exists for its entry in the level file.
[[maybe_unused]] const auto& module_log = module_logger("lin_property");

constexpr int send_timeout_ms = 1000;
// The bus carries short values.
constexpr std::size_t chunk_size = 128;
// A drain ends with the chunk that exceeds it, so that one burst does not starve the caller.
constexpr std::size_t drain_limit = 65535;

bool connect_to(int fd, const std::string& path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  path.copy(address.sun_path, sizeof address.sun_path - 1);
  const auto length = static_cast<socklen_t>(path.size() + sizeof address.sun_family);
  return ::connect(fd, reinterpret_cast<const sockaddr*>(&address), length) == 0;
}

/// `poll` of one descriptor that a signal neither ends nor makes longer.
int poll_through_signals(pollfd& watched, int timeout_ms) {
  using clock_t = std::chrono::steady_clock;
  using std::chrono::milliseconds;
  const bool limited = timeout_ms > 0;
  const auto end = limited ? clock_t::now() + milliseconds(timeout_ms) : clock_t::time_point();
  int left_ms = timeout_ms;
  int count = 0;
  while ((count = ::poll(&watched, 1, left_ms)) < 0 && errno == EINTR) {
    if (limited) {
      const auto left = std::chrono::ceil<milliseconds>(end - clock_t::now());
      left_ms = static_cast<int>(std::max(left, milliseconds::zero()).count());
    }
  }
  return count;
}

}  // namespace

property_client_t::~property_client_t() { property_client_t::disconnect(); }

bool property_client_t::connect() {
  disconnect();
  socket.fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
  if (socket.fd >= 0 && connect_to(socket.fd, socket.path)) {
    return true;
  }
  disconnect();
  return false;
}

void property_client_t::disconnect() {
  if (socket.fd >= 0) {
    ::close(socket.fd);
    socket.fd = -1;
  }
  rx_buffer.clear();
  gone = false;
}

bool property_client_t::create(const std::string& path) { return send({"create", path}); }

bool property_client_t::get(const std::string& path) { return send({"get", path}); }

bool property_client_t::set(const std::string& path, const std::string& value) { return send({"set", path, value}); }

bool property_client_t::list(const std::string& path) { return send({"list", path}); }

bool property_client_t::monitor(const std::string& path) { return send({"monitor", path}); }

bool property_client_t::get_all() { return send({"get_all"}); }

bool property_client_t::read(const std::string& path, std::string& value, int timeout_ms) {
  static_cast<void>(get(path));  // a request that did not go out shows as a missing answer
  std::string command;
  std::string answered;
  if (!receive(command, answered, value, timeout_ms)) {
    value.clear();
    return false;
  }
  if (command == "get_response" && answered == path) {
    return true;
  }
  value.clear();
  return command == "error" && answered == "no_property";
}

bool property_client_t::receive(std::string& command, std::string& path, std::string& value, int timeout_ms) {
  command.clear();
  path.clear();
  value.clear();
  bool drained = false;
  do {
    drained = drain();
    rx_buffer.resynchronise();
    if (const auto* fields = rx_buffer.next_frame(); fields != nullptr && !fields->empty()) {
      if (fields->size() != 3) {
        command = "error";
        path = "bad_payload";
        return !rx_buffer.empty();
      }
      command = (*fields)[0];
      path = (*fields)[1];
      value = (*fields)[2];
      return true;
    }
    // There is no need to ask for bytes that would be there already if the drain has just seen the last of them.
  } while ((timeout_ms != 0 || !drained) && more_comes(timeout_ms));
  return false;
}

bool property_client_t::send(std::initializer_list<std::string_view> fields) {
  tx_frame.clear();
  append_frame(tx_frame, fields);
  std::string_view left = tx_frame;
  while (!left.empty() && is_ready_within(POLLOUT, send_timeout_ms)) {
    const ssize_t sent = ::send(socket.fd, left.data(), left.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent < 0) {
      break;
    }
    left.remove_prefix(static_cast<std::size_t>(sent));
  }
  return left.empty();
}

/// Reads what is there, up to the limit. Whether it saw the last of it: a chunk that is not full is that, too.
bool property_client_t::drain() {
  std::array<char, chunk_size> chunk;  // NOLINT(cppcoreguidelines-pro-type-member-init): as long as recv fills it
  for (std::size_t drained = 0; drained <= drain_limit;) {
    if (!is_ready_within(POLLIN, 0)) {
      return true;
    }
    const ssize_t received = ::recv(socket.fd, chunk.data(), chunk.size(), MSG_DONTWAIT);
    if (received <= 0) {
      gone = received == 0 || (errno != EAGAIN && errno != EINTR);
      return true;
    }
    const auto count = static_cast<std::size_t>(received);
    rx_buffer.append({chunk.data(), count});
    if (count < chunk.size()) {
      return true;
    }
    drained += count;
  }
  return false;
}

/// Waits for bytes. A peer that shut down only its sending side leaves the socket readable for ever, without a byte to
/// come.
bool property_client_t::more_comes(int timeout_ms) { return !gone && is_ready_within(POLLIN, timeout_ms); }

/// Waits for the event. A socket whose peer has hung up is not ready; nor is a closed descriptor, of which poll would
/// only sleep.
bool property_client_t::is_ready_within(short event, int timeout_ms) {
  if (socket.fd < 0) {
    return false;
  }
  pollfd watched{socket.fd, event, 0};
  if (poll_through_signals(watched, timeout_ms) <= 0) {
    return false;
  }
  gone = gone || (watched.revents & POLLHUP) != 0;
  return (watched.revents & POLLHUP) == 0 && (watched.revents & event) != 0;
}

}  // namespace zyl
