#include "test_support/fake_property_service.h"

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "zyl/property_client.h"

namespace test_support {
namespace {

int listen_at(const char* path) {
  sockaddr_un address{};
  address.sun_family = AF_UNIX;
  std::strncpy(address.sun_path, path, sizeof address.sun_path - 1);
  ::unlink(path);
  const int fd = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
  if (::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 || ::listen(fd, 16) != 0) {
    std::abort();
  }
  return fd;
}

void send_all(int fd, std::string_view bytes) {
  while (!bytes.empty()) {
    const ssize_t sent = ::send(fd, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    if (sent < 0) {
      return;
    }
    bytes.remove_prefix(static_cast<std::size_t>(sent));
  }
}

}  // namespace

fake_property_service_t::fake_property_service_t(answer_t given_answer)
    : answer(std::move(given_answer)),
      listener(listen_at(zyl::property_service_path)),
      wake_fd(::eventfd(0, EFD_CLOEXEC)) {
  server = std::thread([this] { serve(); });
}

fake_property_service_t::~fake_property_service_t() {
  {
    const std::lock_guard lock(mutex);
    stopping = true;
  }
  wake();
  server.join();
  close_clients();
  ::close(listener);
  ::close(wake_fd);
  ::unlink(zyl::property_service_path);
}

std::string fake_property_service_t::nothing(const request_t& /*request*/, int /*client*/) { return {}; }

fake_property_service_t::answer_t fake_property_service_t::from(std::map<std::string, std::string> values) {
  return [values = std::move(values)](const request_t& request, int /*client*/) -> std::string {
    if (request.size() != 2 || request[0] != "get") {
      return {};
    }
    const auto entry = values.find(request[1]);
    return entry == values.end() ? zyl::build_frame({"error", "no_property", request[1]})
                                 : zyl::build_frame({"get_response", request[1], entry->second});
  };
}

void fake_property_service_t::delay_answer(const std::string& path, std::chrono::milliseconds delay) {
  const std::lock_guard lock(mutex);
  delays[path] = delay;
}

std::vector<fake_property_service_t::request_t> fake_property_service_t::requests() const {
  const std::lock_guard lock(mutex);
  return heard;
}

void fake_property_service_t::forget_requests() {
  const std::lock_guard lock(mutex);
  heard.clear();
}

bool fake_property_service_t::hears(const request_t& request) const {
  return wait_for([&] { return std::find(heard.begin(), heard.end(), request) != heard.end(); });
}

bool fake_property_service_t::hears_count(std::size_t count) const {
  return wait_for([&] { return heard.size() >= count; });
}

bool fake_property_service_t::has_clients(std::size_t count) const {
  return wait_for([&] { return clients.size() == count; });
}

void fake_property_service_t::send_bytes(std::string_view bytes) {
  wait_for([this] { return !clients.empty(); });
  const std::lock_guard lock(mutex);
  for (const client_t& client : clients) {
    send_all(client.fd, bytes);
  }
}

void fake_property_service_t::close_clients() {
  const std::lock_guard lock(mutex);
  for (const client_t& client : clients) {
    // The server thread may be in poll, which would keep a merely closed connection up.
    ::shutdown(client.fd, SHUT_RDWR);
    ::close(client.fd);
  }
  clients.clear();
  wake();
}

void fake_property_service_t::end_sending() {
  const std::lock_guard lock(mutex);
  for (const client_t& client : clients) {
    ::shutdown(client.fd, SHUT_WR);
  }
}

void fake_property_service_t::wake() const { ::eventfd_write(wake_fd, 1); }

bool fake_property_service_t::wait_for(const std::function<bool()>& condition) const {
  std::unique_lock lock(mutex);
  return changed.wait_for(lock, std::chrono::seconds(20), condition);
}

// The descriptors are served only under the lock, and those that the test closed are no longer in the list then.
void fake_property_service_t::serve() {
  for (;;) {
    std::vector<pollfd> watched{{wake_fd, POLLIN, 0}, {listener, POLLIN, 0}};
    int limit_ms = -1;
    {
      const std::lock_guard lock(mutex);
      limit_ms = until_late_answer_ms();
      for (const client_t& client : clients) {
        watched.push_back({client.fd, POLLIN, 0});
      }
    }
    ::poll(watched.data(), watched.size(), limit_ms);
    const std::lock_guard lock(mutex);
    if (stopping) {
      return;
    }
    if (watched[0].revents != 0) {
      eventfd_t count = 0;
      ::eventfd_read(wake_fd, &count);
    }
    if (watched[1].revents != 0) {
      accept_client();
    }
    std::erase_if(clients, [this](client_t& client) { return !serve_client(client); });
    send_late_answers();
    changed.notify_all();
  }
}

int fake_property_service_t::until_late_answer_ms() const {
  int limit_ms = -1;
  for (const late_answer_t& late : late_answers) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(late.due - clock_t::now());
    const int left_ms = std::max(0, static_cast<int>(left.count()));
    limit_ms = limit_ms < 0 ? left_ms : std::min(limit_ms, left_ms);
  }
  return limit_ms;
}

void fake_property_service_t::send_late_answers() {
  std::erase_if(late_answers, [this](const late_answer_t& late) {
    const bool is_due = late.due <= clock_t::now();
    for (const client_t& client : clients) {
      if (is_due && client.number == late.client) {
        send_all(client.fd, late.bytes);
      }
    }
    return is_due;
  });
}

void fake_property_service_t::give_answer(const client_t& client, const request_t& request) {
  const auto delay = request.size() > 1 ? delays.find(request[1]) : delays.end();
  if (delay == delays.end()) {
    send_all(client.fd, answer(request, client.number));
  } else {
    late_answers.push_back({clock_t::now() + delay->second, client.number, answer(request, client.number)});
  }
}

void fake_property_service_t::accept_client() {
  clients.push_back({::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC), accepted, {}});
  ++accepted;
}

bool fake_property_service_t::serve_client(client_t& client) {
  std::array<char, 4096> chunk{};
  const ssize_t count = ::recv(client.fd, chunk.data(), chunk.size(), MSG_DONTWAIT);
  if (count == 0 || (count < 0 && errno != EAGAIN)) {
    ::close(client.fd);
    return false;
  }
  if (count > 0) {
    client.received.append({chunk.data(), static_cast<std::size_t>(count)});
  }
  client.received.resynchronise();
  while (auto request = client.received.take_frame()) {
    give_answer(client, *request);
    heard.push_back(std::move(*request));
    client.received.resynchronise();
  }
  return true;
}

}  // namespace test_support
