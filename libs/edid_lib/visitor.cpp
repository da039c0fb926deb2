#include "edid_lib/visitor.h"

#include "edid_lib/edid.h"

namespace edid_lib {

void visitor_t::apply(edid_t* edid) {
  if (edid != nullptr) {
    edid->accept(this, true);
    edid->accept(this, false);
  }
}

}  // namespace edid_lib
