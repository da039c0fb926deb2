#pragma once

#include <cstddef>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "sim/descriptor.h"
#include "sim/property_connection.h"
#include "sim/property_tree.h"
#include "sim/story.h"
#include "zyl/event_ptr.h"

namespace sim {

/// The property service: serves a property tree on a Unix stream socket, in frames of `zyl/property_frame.h`.
///
///   request           answer
///   create PATH       none; the property exists from now on
///   get PATH          get_response PATH VALUE, or error no_property PATH
///   set PATH VALUE    none; creates the property where needed, and all who watch it get changed PATH VALUE, also when
///                     the value is the one it had
///   monitor PATH      none; from now on changed PATH VALUE comes at every set, also of a property that is made later
///   list PATH         get_response PATH VALUE for each property below PATH in path order, then get_response "" ""
///   get_all           the same for all properties
///
/// Any other frame is ignored. A property has a path that is not empty, and a value that fits into a response frame; a
/// set that breaks this is ignored too. The story tells as "property" what a client reads, watches and sets, but for
/// the paths below "/sim/", by which the simulation is steered. Setting "/sim/property/fault" to "junk" sends bytes
/// that are no frame to every client once. Loop thread only.
class property_service_t {
 public:
  static constexpr const char* default_path = "/tmp/.tarn_property_ipc";

  /// Serves `tree` from now on; the tree must not change once this object is gone. Throws `std::system_error` if `path`
  /// cannot be served.
  property_service_t(event_base* base, property_tree_t& tree, story_t& story, const std::string& path = default_path);

  property_service_t(const property_service_t&) = delete;
  property_service_t& operator=(const property_service_t&) = delete;
  property_service_t(property_service_t&&) = delete;
  property_service_t& operator=(property_service_t&&) = delete;
  ~property_service_t() = default;

  /// How many clients are connected.
  std::size_t client_count() const { return clients.size(); }

 private:
  using fields_t = property_connection_t::fields_t;

  static void on_connection(evutil_socket_t fd, short events, void* self);
  void accept_clients();
  void drop(const property_connection_t& client);
  void handle(property_connection_t& client, const fields_t& fields);
  void create(property_connection_t& client, const fields_t& fields);
  void get(property_connection_t& client, const fields_t& fields);
  void set(property_connection_t& client, const fields_t& fields);
  void monitor(property_connection_t& client, const fields_t& fields);
  void list(property_connection_t& client, const fields_t& fields);
  void get_all(property_connection_t& client, const fields_t& fields);
  void send_below(property_connection_t& client, std::string_view path);
  void send_change(const std::string& path, const std::string& value);
  void send_junk();
  void tell(const property_connection_t& client, std::initializer_list<std::string_view> text, std::string_view path);

  event_base* base;
  property_tree_t& tree;
  story_t& story;
  descriptor_t listener;
  std::vector<std::unique_ptr<property_connection_t>> clients;
  zyl::event_ptr_t connection;
};

}  // namespace sim
