#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace sim {

/// The appliance's shared state, text values under paths: the inside of the property service.
///
/// The parts of the simulation `publish` what they do and hear with `on_set` what clients want of them; the service
/// turns requests of clients into `create` and `set`. Handlers run inside the call that causes them and may call
/// anything here. Loop thread only.
class property_tree_t {
 public:
  using set_handler_t = std::function<void(const std::string& value)>;
  using change_handler_t = std::function<void(const std::string& path, const std::string& value)>;

  /// Sets the value, creating the property where needed, and tells every change handler, also when the value is the
  /// one it had. Set handlers do not hear it.
  void publish(std::string_view path, std::string_view value);

  /// `publish`, then the path's set handlers: what a client's "set" does.
  void set(std::string_view path, std::string_view value);

  /// Makes the property exist, with an empty value; nothing happens to one that exists. Nobody is told.
  void create(std::string_view path);

  /// The value; empty for a property that does not exist.
  std::string value(std::string_view path) const;

  /// The value; null for a property that does not exist. Valid until the next change.
  const std::string* find(std::string_view path) const;

  /// Calls `handler` with the value at every `set` of `path`, for the life of the tree.
  void on_set(const std::string& path, set_handler_t handler);

  /// Calls `handler` at every `publish` and `set` of any path, for the life of the tree.
  void on_change(change_handler_t handler);

  /// Path and value of each property below `path` in path order; of all properties if `path` is empty or "/". The
  /// property `path` itself is not below it.
  std::vector<std::pair<std::string, std::string>> below(std::string_view path) const;

 private:
  std::map<std::string, std::string, std::less<>> values;
  std::map<std::string, std::vector<set_handler_t>, std::less<>> set_handlers;
  std::vector<change_handler_t> change_handlers;
};

}  // namespace sim
