#pragma once

#include <string>

#include "control_lib/src/property_observer_eb.h"

namespace control_lib {

/// Watches properties of the bus for observers on an event loop.
class property_monitor_eb_t {
 public:
  virtual ~property_monitor_eb_t() = default;

  /// Opens the connection to the bus, anew if there is one, and asks for all paths that have observers. A failure is
  /// logged and leaves no connection; nobody tries again but by another call, and observers registered meanwhile wait
  /// for that. Any thread. Not from within an observer's call.
  virtual void connect() = 0;

  /// Registers an observer of a property, which hears its value and then each change, on the loop's thread. It is not
  /// owned and must outlive the monitor. The requests go out from the loop, so nothing is told of whether they did. Any
  /// thread. Not from within an observer's call.
  virtual void monitor(const std::string& path, property_observer_eb_t* observer) = 0;

  /// Writes a property. False without a connection or if the request did not go out. Loop thread. Not from within an
  /// observer's call.
  virtual bool set(const std::string& path, const std::string& value) = 0;
};

}  // namespace control_lib
