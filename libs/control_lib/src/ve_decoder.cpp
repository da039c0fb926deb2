#include "control_lib/src/ve_decoder.h"

#include <utility>

namespace control_lib {

std::ostream& operator<<(std::ostream& out, const uri_t& uri) { return out << '"' << uri.uri << "\":" << uri.stream; }

std::ostream& operator<<(std::ostream& out, const std::list<uri_t>& uris) {
  const char* separator = "";
  for (const uri_t& uri : uris) {
    out << separator << uri;
    separator = ", ";
  }
  return out;
}

void decoder_handle_t::release() {
  const int kept = generation;
  *this = {};
  generation = kept;
}

void decoder_t::reset() {
  auto kept = std::move(decrypt_timer);
  *this = {};
  decrypt_timer = std::move(kept);
}

}  // namespace control_lib
