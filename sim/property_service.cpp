#include "sim/property_service.h"

#include <sys/socket.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>
#include <system_error>
#include <utility>

#include "sim/unix_address.h"

namespace sim {
namespace {

/// Bytes that are no frame, beginnings of magics, a frame with too few fields and one whose last field is cut off. A
/// receiver that keeps to the format is in step again at the next good frame.
std::string junk() {
  using namespace std::string_view_literals;
  std::string bytes("\0\xff no frame ipc_mag ipc_magi"sv);
  bytes += zyl::build_frame({"changed", "/sim"});
  bytes += "ipc_magic\x06\0\x01\0a\x09\0b"sv;
  return bytes;
}

bool fits_response(std::string_view path, std::string_view value) {
  return path.size() + value.size() <= zyl::longest_property;
}

}  // namespace

property_service_t::property_service_t(event_base* loop_base, property_tree_t& served_tree, story_t& told_story,
                                       const std::string& path)
    : base(loop_base),
      tree(served_tree),
      story(told_story),
      listener(bind_unix_socket(SOCK_STREAM, path)),
      connection(event_new(base, listener.get(), EV_READ | EV_PERSIST, on_connection, this)) {
  if (listen(listener.get(), SOMAXCONN) != 0) {
    throw std::system_error(errno, std::generic_category(), "cannot listen on " + path);
  }
  event_add(connection.get(), nullptr);
  tree.on_change([this](const std::string& changed, const std::string& value) { send_change(changed, value); });
  tree.on_set("/sim/property/fault", [this](const std::string& fault) {
    if (fault == "junk") {
      send_junk();
    }
  });
}

void property_service_t::on_connection(evutil_socket_t /*fd*/, short /*events*/, void* self) {
  static_cast<property_service_t*>(self)->accept_clients();
}

void property_service_t::accept_clients() {
  for (;;) {
    descriptor_t socket(accept4(listener.get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
    if (!socket) {
      return;
    }
    clients.push_back(std::make_unique<property_connection_t>(
        base, std::move(socket),
        [this](property_connection_t& client, const fields_t& fields) { handle(client, fields); },
        [this](property_connection_t& client) { drop(client); }));
  }
}

void property_service_t::drop(const property_connection_t& client) {
  std::erase_if(clients, [&client](const auto& connected) { return connected.get() == &client; });
}

void property_service_t::handle(property_connection_t& client, const fields_t& fields) {
  struct request_t {
    std::string_view command;
    std::size_t field_count;
    void (property_service_t::*serve)(property_connection_t&, const fields_t&);
  };
  static constexpr std::array<request_t, 6> requests{{
      {"create", 2, &property_service_t::create},
      {"get", 2, &property_service_t::get},
      {"set", 3, &property_service_t::set},
      {"monitor", 2, &property_service_t::monitor},
      {"list", 2, &property_service_t::list},
      {"get_all", 1, &property_service_t::get_all},
  }};
  for (const auto& request : requests) {
    if (fields.size() == request.field_count && fields[0] == request.command) {
      (this->*request.serve)(client, fields);
      return;
    }
  }
}

void property_service_t::create(property_connection_t& /*client*/, const fields_t& fields) {
  if (!fields[1].empty() && fits_response(fields[1], "")) {
    tree.create(fields[1]);
  }
}

void property_service_t::get(property_connection_t& client, const fields_t& fields) {
  const auto path = fields[1];
  const std::string* found = tree.find(path);
  if (found == nullptr) {
    tell(client, {" reads ", path, ", which does not exist"}, path);
    client.send({"error", "no_property", path});
    return;
  }
  tell(client, {" reads ", path, ": \"", *found, "\""}, path);
  client.send({"get_response", path, *found});
}

void property_service_t::set(property_connection_t& client, const fields_t& fields) {
  const auto path = fields[1];
  const auto value = fields[2];
  if (path.empty() || !fits_response(path, value)) {
    return;
  }
  tell(client, {" sets ", path, " to \"", value, "\""}, path);
  tree.set(path, value);
}

void property_service_t::monitor(property_connection_t& client, const fields_t& fields) {
  tell(client, {" watches ", fields[1]}, fields[1]);
  client.watched.emplace(fields[1]);
}

void property_service_t::list(property_connection_t& client, const fields_t& fields) { send_below(client, fields[1]); }

void property_service_t::get_all(property_connection_t& client, const fields_t& /*fields*/) { send_below(client, ""); }

void property_service_t::send_below(property_connection_t& client, std::string_view path) {
  for (const auto& [found, value] : tree.below(path)) {
    client.send({"get_response", found, value});
  }
  client.send({"get_response", "", ""});
}

void property_service_t::send_change(const std::string& path, const std::string& value) {
  for (const auto& client : clients) {
    if (client->watched.contains(path)) {
      client->send({"changed", path, value});
    }
  }
}

void property_service_t::send_junk() {
  story.tell("property", "sends junk to its clients");
  for (const auto& client : clients) {
    client->send_bytes(junk());
  }
}

void property_service_t::tell(const property_connection_t& client, std::initializer_list<std::string_view> text,
                              std::string_view path) {
  if (!path.starts_with("/sim/")) {
    story.tell("property", client.name(), text);
  }
}

}  // namespace sim
