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
// Keeps one burst from starving the caller.
constexpr std::size_t drain_limit = 65536;

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
  may_have_more = false;
  may_send = false;
  stream_ended = false;
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
  do {
    drain();
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
  } while (more_comes(timeout_ms));
  return false;
}

bool property_client_t::hung_up() const {
  pollfd watched{socket.fd, POLLIN, 0};
  return socket.fd >= 0 && (stream_ended || (::poll(&watched, 1, 0) > 0 && (watched.revents & POLLHUP) != 0));
}

bool property_client_t::send(std::initializer_list<std::string_view> fields) {
  tx_frame.clear();
  append_frame(tx_frame, fields);
  std::string_view left = tx_frame;
  while (!left.empty() && (may_send || events_within(POLLOUT, send_timeout_ms) != 0)) {
    may_send = false;
    const ssize_t sent = ::send(socket.fd, left.data(), left.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent < 0) {
      break;
    }
    left.remove_prefix(static_cast<std::size_t>(sent));
  }
  return left.empty();
}

/// Reads what is there, at most `drain_limit` bytes. On the way it sees whether the next request must wait for room:
/// only requests take room, so there still is some when the next one comes.
void property_client_t::drain() {
  may_have_more = false;
  const int seen = events_within(POLLIN | POLLOUT, 0);
  may_send = (seen & POLLOUT) != 0;
  if ((seen & POLLIN) == 0) {
    return;
  }
  std::array<char, drain_limit> chunk;  // NOLINT(cppcoreguidelines-pro-type-member-init): as long as recv fills it
  const ssize_t received = ::recv(socket.fd, chunk.data(), chunk.size(), MSG_DONTWAIT);
  if (received > 0) {
    rx_buffer.append({chunk.data(), static_cast<std::size_t>(received)});
    may_have_more = static_cast<std::size_t>(received) == chunk.size();
  } else {
    stream_ended = received == 0 || (errno != EAGAIN && errno != EINTR);
  }
}

/// Waits for bytes. There is no need to ask for those that would be there already if a drain has just seen the last of
/// them. A peer that shut down only its sending side leaves the socket readable for ever, without a byte to come.
bool property_client_t::more_comes(int timeout_ms) {
  return !stream_ended && (may_have_more || timeout_ms != 0) && events_within(POLLIN, timeout_ms) != 0;
}

/// Waits for one of the events and returns those that there are. A peer that has hung up gives none; nor does a closed
/// descriptor, of which poll would only sleep.
int property_client_t::events_within(short events, int timeout_ms) const {
  if (socket.fd < 0) {
    return 0;
  }
  pollfd watched{socket.fd, events, 0};
  const bool any = poll_through_signals(watched, timeout_ms) > 0 && (watched.revents & POLLHUP) == 0;
  return any ? watched.revents & events : 0;
}

}  // namespace zyl
