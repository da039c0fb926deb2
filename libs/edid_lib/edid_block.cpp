#include "edid_lib/edid_block.h"

namespace edid_lib {

void edid_block_t::set_byte(uint8_t index, uint8_t value) {
  if (index < data.size()) {
    data[index] = value;
  }
}

}  // namespace edid_lib
