#pragma once

#include <cstdint>
#include <ostream>
#include <string>

namespace control_lib {

/// Why an observer hears of a property.
enum class property_response_e : int32_t { changed = 0, get = 1, no_prop_error = 2 };

/// Writes the name, as in "property_response_e::changed"; a number for a value without one.
std::ostream& operator<<(std::ostream& out, property_response_e kind);

/// Hears the values of properties on the event-loop side.
class property_observer_eb_t {
 public:
  /// Called on the loop thread with the monitor's lock held: an override must not call the monitor, it has to post.
  /// `value` is empty for `no_prop_error`.
  virtual void on_property(property_response_e kind, const std::string& path, const std::string& value) = 0;

 protected:
  ~property_observer_eb_t() = default;
};

}  // namespace control_lib
