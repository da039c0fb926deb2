#include "lnx/src/xk_status.h"

#include "lnx/src/status_file.h"

namespace lnx {
namespace {

std::string known_poe_class;

}  // namespace

bool read_aux_status(std::string& out_text) { return read_status_text(aux_status_file, out_text); }

bool read_poe_status(std::string& out_text) { return read_status_text(poe_status_file, out_text); }

bool read_board_id(std::string& out_text) {
  return read_status_text("/sys/devices/platform/xk_status/board_id", out_text);
}

bool read_product_id(std::string& out_text) {
  return read_status_text("/sys/devices/platform/xk_status/product_id", out_text);
}

bool read_poe_class(std::string& out_text) {
  if (known_poe_class.empty() && !read_status_text("/sys/devices/platform/xk_status/poe_class", known_poe_class)) {
    return false;
  }
  out_text = known_poe_class;
  return true;
}

}  // namespace lnx
