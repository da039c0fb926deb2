#include "edid_lib/cta_extended_data_blocks.h"

#include "edid_lib/visitor.h"

namespace edid_lib {

void cta_video_capability_exdb_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

void cta_colorimetry_exdb_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

void cta_ycc_420_video_exdb_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

void cta_ycc_420_capability_exdb_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

}  // namespace edid_lib
