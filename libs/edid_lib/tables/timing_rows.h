#pragma once

#include <span>

#include "edid_lib/timing_tables.h"

namespace edid_lib::tables {

/// The rows of the four timing tables in the order of their numbers.
std::span<const timing_row_t> established_rows();
std::span<const timing_row_t> dmt_rows();
std::span<const timing_row_t> cta_rows();
std::span<const timing_row_t> hdmi_rows();

}  // namespace edid_lib::tables
