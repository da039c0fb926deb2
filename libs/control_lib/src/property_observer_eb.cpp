#include "control_lib/src/property_observer_eb.h"

namespace control_lib {

std::ostream& operator<<(std::ostream& out, property_response_e kind) {
  switch (kind) {
    case property_response_e::changed:
      return out << "property_response_e::changed";
    case property_response_e::get:
      return out << "property_response_e::get";
    case property_response_e::no_prop_error:
      return out << "property_response_e::no_prop_error";
  }
  return out << static_cast<int32_t>(kind);
}

}  // namespace control_lib
