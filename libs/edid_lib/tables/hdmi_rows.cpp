#include "edid_lib/tables/timing_rows.h"

namespace edid_lib::tables {
namespace {

// The video formats that the HDMI vendor block names: HDMI 1.4b, section 8.2.3.1, HDMI VIC 1 to 4. Written by hand.
// Columns: key, number, {clock in kHz, horizontal active, sync start, sync end, total, the same vertically, flags}.
// clang-format off
constexpr timing_row_t rows[] = {
    {"3840x2160@30", 1, {297000, 3840, 4016, 4104, 4400, 2160, 2168, 2178, 2250, 5}},
    {"3840x2160@25", 2, {297000, 3840, 4896, 4984, 5280, 2160, 2168, 2178, 2250, 5}},
    {"3840x2160@24", 3, {297000, 3840, 5116, 5204, 5500, 2160, 2168, 2178, 2250, 5}},
    {"4096x2160@24", 4, {297000, 4096, 5116, 5204, 5500, 2160, 2168, 2178, 2250, 5}},
};
// clang-format on

}  // namespace

std::span<const timing_row_t> hdmi_rows() { return rows; }

}  // namespace edid_lib::tables
