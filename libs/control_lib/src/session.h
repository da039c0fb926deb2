#pragma once

#include <string>

namespace control_lib {

/// Base of the long-lived services of a process, which can be found by the names of their classes.
///
/// Services may be made, found and destroyed on any thread. The registry keeps none alive, and holds each from the
/// constructor here to the destructor here: another thread may find a service while its derived part is still being
/// built, or is gone already. So who finds one must know that it is whole and will stay so.
class session_t {
 public:
  /// Registers the service; the last registration of a name is the one that is found.
  explicit session_t(std::string name);

  /// Takes the service out of the registry, unless another has taken its name since.
  virtual ~session_t() = 0;

  session_t(const session_t&) = delete;
  session_t& operator=(const session_t&) = delete;
  session_t(session_t&&) = delete;
  session_t& operator=(session_t&&) = delete;

  /// Makes the service ready for use; false if it cannot be. This one has nothing to do and gives true. On the
  /// service's own thread, as are all its operations unless it says otherwise.
  virtual bool open_session() { return true; }

  /// Lets go of what `open_session` took; the service can be opened again. This one has nothing to do. On the service's
  /// own thread.
  virtual void close_session() {}

  /// The service registered under `name`, or null. Any thread.
  static session_t* find(const std::string& name);

 private:
  std::string session_name;
};

}  // namespace control_lib
