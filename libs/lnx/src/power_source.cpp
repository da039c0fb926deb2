#include "lnx/src/power_source.h"

#include <stdexcept>

#include "lnx/src/status_file.h"
#include "lnx/src/xk_status.h"

namespace lnx {
namespace {

/// 0: not known yet.
uint32_t known_power_class = 0;

bool keep(uint32_t power_class, uint32_t& out_power_class) {
  known_power_class = power_class;
  out_power_class = power_class;
  return true;
}

bool read_poe_power_class(uint32_t& out_power_class) {
  std::string poe_class;
  static_cast<void>(read_poe_class(poe_class));  // without a file it is empty, and that is no number
  const auto power_class = poe_power_class(poe_class);
  return power_class && keep(*power_class, out_power_class);
}

}  // namespace

bool read_power_source(uint32_t& out_power_class) {
  if (known_power_class != 0) {
    out_power_class = known_power_class;
    return true;
  }
  int32_t status = 0;
  if (read_status_integer(aux_status_file, status) && status == 1) {
    return keep(1, out_power_class);
  }
  if (!read_status_integer(poe_status_file, status)) {
    return false;
  }
  return status == 1 ? read_poe_power_class(out_power_class) : keep(0, out_power_class);
}

std::optional<uint32_t> poe_power_class(const std::string& poe_class) {
  int number = 0;
  try {
    number = std::stoi(poe_class);
  } catch (const std::logic_error&) {  // no number, or out of range
    return std::nullopt;
  }
  if (number >= 5) {
    return 4;
  }
  return number == 4 ? 3 : 2;
}

}  // namespace lnx
