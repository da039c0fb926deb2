#include "edid_lib/tables/timing_rows.h"

namespace edid_lib::tables {
namespace {

// The established timings of VESA E-EDID 1.4, section 3.8, in the order of their bits: byte 35 from its lowest bit,
// byte 36 from its lowest bit, then the highest bit of byte 37. Written by hand from the VESA DMT sheets and the older
// timings that only these bits name (IBM 720x400, Apple 640x480@67 and 832x624). Bit 16 stands for 1152x864@75 here.
// Columns: key, number, {clock in kHz, horizontal active, sync start, sync end, total, the same vertically, flags}.
// clang-format off
constexpr timing_row_t rows[] = {
    {"800x600@60", 0, {40000, 800, 840, 968, 1056, 600, 601, 605, 628, 5}},
    {"800x600@56", 1, {36000, 800, 824, 896, 1024, 600, 601, 603, 625, 5}},
    {"640x480@75", 2, {31500, 640, 656, 720, 840, 480, 481, 484, 500, 10}},
    {"640x480@72", 3, {31500, 640, 664, 704, 832, 480, 489, 492, 520, 10}},
    {"640x480@67", 4, {30240, 640, 704, 768, 864, 480, 483, 486, 525, 10}},
    {"640x480@60", 5, {25175, 640, 656, 752, 800, 480, 490, 492, 525, 10}},
    {"720x400@88", 6, {35500, 720, 738, 846, 900, 400, 421, 423, 449, 10}},
    {"720x400@70", 7, {28320, 720, 738, 846, 900, 400, 412, 414, 449, 6}},
    {"1280x1024@75", 8, {135000, 1280, 1296, 1440, 1688, 1024, 1025, 1028, 1066, 5}},
    {"1024x768@75", 9, {78750, 1024, 1040, 1136, 1312, 768, 769, 772, 800, 5}},
    {"1024x768@70", 10, {75000, 1024, 1048, 1184, 1328, 768, 771, 777, 806, 10}},
    {"1024x768@60", 11, {65000, 1024, 1048, 1184, 1344, 768, 771, 777, 806, 10}},
    {"1024x768i@43", 12, {44900, 1024, 1032, 1208, 1264, 768, 768, 776, 817, 21}},
    {"832x624@75", 13, {57284, 832, 864, 928, 1152, 624, 625, 628, 667, 10}},
    {"800x600@75", 14, {49500, 800, 816, 896, 1056, 600, 601, 604, 625, 5}},
    {"800x600@72", 15, {50000, 800, 856, 976, 1040, 600, 637, 643, 666, 5}},
    {"1152x864@75", 16, {108000, 1152, 1216, 1344, 1600, 864, 865, 868, 900, 5}},
};
// clang-format on

}  // namespace

std::span<const timing_row_t> established_rows() { return rows; }

}  // namespace edid_lib::tables
