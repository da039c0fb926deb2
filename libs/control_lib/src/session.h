#pragma once

#include <string>

namespace control_lib {

/// Base of the long-lived services of a process, which can be found by the names of their classes. Any thread may find
/// one; who uses it must know that it lives.
class session_t {
 public:
  /// Registers the service; the last registration of a name is the one that is found.
  explicit session_t(std::string name);

  /// Takes the service out of the registry, unless another has taken its name since.
  virtual ~session_t();

  session_t(const session_t&) = delete;
  session_t& operator=(const session_t&) = delete;
  session_t(session_t&&) = delete;
  session_t& operator=(session_t&&) = delete;

  /// Makes the service ready for use. False if it cannot be.
  virtual bool open_session() { return true; }
  virtual void close_session() {}

  /// The service registered under `name`, or null.
  static session_t* find(const std::string& name);

 private:
  std::string session_name;
};

}  // namespace control_lib
