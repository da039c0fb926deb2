#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "zyl/property_client.h"

namespace vgnctl {

/// What one command has to say to the property service, each request followed through to its end.
///
/// Every call throws a `zyl::exception_t` with a text for people if the service hangs up or does not take the request;
/// `get`, `set` and `create` also if it does not answer. A path, and path and value together, must not be longer than
/// `zyl::longest_property`. One thread.
class property_session_t {
 public:
  using property_handler_t = std::function<void(const std::string& path, const std::string& value)>;

  /// Connects. Throws if there is no service.
  property_session_t();

  /// The value of a property; nothing if it does not exist.
  std::optional<std::string> get(const std::string& path);

  /// Writes a property and waits until the service has it. Throws if the property does not exist then; which value it
  /// has is not looked at.
  void set(const std::string& path, const std::string& value);

  /// Makes a property exist and waits until it does. Throws if it does not.
  void create(const std::string& path);

  /// Hands over each property below `path` in the order of the service, until that gives an empty path, or none
  /// for half a second. None from the beginning is an empty list.
  void list(const std::string& path, const property_handler_t& on_property);

  /// Hands over all properties, in the same way.
  void dump(const property_handler_t& on_property);

  /// Hands over each change of the properties. `on_unknown` is called when the service says that it does not know one
  /// of them, which need not be the end of it: it may come to exist. Ends only by throwing.
  [[noreturn]] void monitor(const std::vector<std::string>& paths, const property_handler_t& on_change,
                            const std::function<void()>& on_unknown);

 private:
  struct message_t {
    std::string command;
    std::string path;
    std::string value;

    bool tells_value_of(const std::string& asked) const { return command == "get_response" && path == asked; }
    bool tells_no_property() const { return command == "error" && path == "no_property"; }
  };

  std::optional<message_t> next_message(int64_t limit_ms);
  void require(const std::string& path);
  void require_sent(bool sent) const;
  void collect(const property_handler_t& on_property);

  zyl::property_client_t client;
};

}  // namespace vgnctl
