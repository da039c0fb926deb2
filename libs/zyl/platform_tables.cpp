// The tables of the product range: the models, the words for platforms and the CPU sets; this file alone changes with
// the range. A model that nothing in the daemon asks for has its number and no class values; those rows were made with
//   for i in $(seq 141); do printf '    {"part-%03u", "Model %03u", %u, 0, 0, {0, 0}},\n' $i $i $i; done
#include "zyl/platform_tables.h"

namespace zyl {
namespace {

constexpr platform_model_t models[] = {
    {"part-001", "Model 001", 1, 0, 0, {0, 0}},    {"part-002", "Model 002", 2, 0, 0, {0, 0}},
    {"part-003", "Model 003", 3, 0, 0, {0, 0}},    {"part-004", "Model 004", 4, 0, 0, {0, 0}},
    {"part-005", "Model 005", 5, 0, 0, {0, 0}},    {"part-006", "Model 006", 6, 0, 0, {0, 0}},
    {"part-007", "Model 007", 7, 0, 0, {0, 0}},    {"part-008", "Model 008", 8, 0, 0, {0, 0}},
    {"part-009", "Model 009", 9, 0, 0, {0, 0}},    {"part-010", "Model 010", 10, 0, 0, {0, 0}},
    {"part-011", "Model 011", 11, 0, 0, {0, 0}},   {"part-012", "Model 012", 12, 0, 0, {0, 0}},
    {"part-013", "Model 013", 13, 0, 0, {0, 0}},   {"part-014", "Model 014", 14, 0, 0, {0, 0}},
    {"part-015", "Model 015", 15, 0, 0, {0, 0}},   {"part-016", "Model 016", 16, 0, 0, {0, 0}},
    {"part-017", "Model 017", 17, 0, 0, {0, 0}},   {"part-018", "Model 018", 18, 0, 0, {0, 0}},
    {"part-019", "Model 019", 19, 0, 0, {0, 0}},   {"part-020", "Model 020", 20, 0, 0, {0, 0}},
    {"part-021", "Model 021", 21, 0, 0, {0, 0}},   {"part-022", "Model 022", 22, 0, 0, {0, 0}},
    {"part-023", "Model 023", 23, 0, 0, {0, 0}},   {"part-024", "Model 024", 24, 0, 0, {0, 0}},
    {"part-025", "Model 025", 25, 0, 0, {0, 0}},   {"part-026", "Model 026", 26, 0, 0, {0, 0}},
    {"part-027", "Model 027", 27, 0, 0, {0, 0}},   {"part-028", "Model 028", 28, 0, 0, {0, 0}},
    {"part-029", "Model 029", 29, 0, 0, {0, 0}},   {"part-030", "Model 030", 30, 0, 0, {0, 0}},
    {"part-031", "Model 031", 31, 0, 0, {0, 0}},   {"part-032", "Model 032", 32, 0, 0, {0, 0}},
    {"part-033", "Model 033", 33, 0, 0, {0, 0}},   {"part-034", "Model 034", 34, 0, 0, {0, 0}},
    {"part-035", "Model 035", 35, 0, 0, {0, 0}},   {"part-036", "Model 036", 36, 0, 0, {0, 0}},
    {"part-037", "Model 037", 37, 0, 0, {0, 0}},   {"part-038", "Model 038", 38, 0, 0, {0, 0}},
    {"part-039", "Model 039", 39, 0, 0, {0, 0}},   {"part-040", "Model 040", 40, 0, 0, {0, 0}},
    {"part-041", "Model 041", 41, 0, 0, {0, 0}},   {"part-042", "Model 042", 42, 0, 0, {0, 0}},
    {"part-043", "Model 043", 43, 0, 0, {0, 0}},   {"part-044", "Model 044", 44, 0, 0, {0, 0}},
    {"part-045", "Model 045", 45, 0, 0, {0, 0}},   {"part-046", "Model 046", 46, 0, 0, {0, 0}},
    {"part-047", "Model 047", 47, 0, 0, {0, 0}},   {"part-048", "Model 048", 48, 0, 0, {0, 0}},
    {"part-049", "Model 049", 49, 0, 0, {0, 0}},   {"part-050", "Model 050", 50, 0, 0, {0, 0}},
    {"part-051", "Model 051", 51, 0, 0, {0, 0}},   {"part-052", "Model 052", 52, 0, 0, {0, 0}},
    {"part-053", "Model 053", 53, 0, 0, {0, 0}},   {"part-054", "Model 054", 54, 0, 0, {0, 0}},
    {"part-055", "Model 055", 55, 0, 0, {0, 0}},   {"part-056", "Model 056", 56, 0, 0, {0, 0}},
    {"part-057", "Model 057", 57, 0, 0, {0, 0}},   {"part-058", "Model 058", 58, 0, 0, {0, 0}},
    {"part-059", "Model 059", 59, 0, 0, {0, 0}},   {"part-060", "Model 060", 60, 0, 0, {0, 0}},
    {"part-061", "Model 061", 61, 0, 0, {0, 0}},   {"part-062", "Model 062", 62, 0, 0, {0, 0}},
    {"part-063", "Model 063", 63, 0, 0, {0, 0}},   {"part-064", "Model 064", 64, 0, 0, {0, 0}},
    {"part-065", "Model 065", 65, 0, 0, {0, 0}},   {"part-066", "Model 066", 66, 0, 0, {0, 0}},
    {"part-067", "Model 067", 67, 0, 0, {0, 0}},   {"part-068", "Model 068", 68, 0, 0, {0, 0}},
    {"part-069", "Model 069", 69, 0, 0, {0, 0}},   {"part-070", "Model 070", 70, 0, 0, {0, 0}},
    {"part-071", "Model 071", 71, 0, 0, {0, 0}},   {"part-072", "Model 072", 72, 0, 0, {0, 0}},
    {"part-073", "Model 073", 73, 0, 0, {0, 0}},   {"part-074", "Model 074", 74, 0, 0, {0, 0}},
    {"part-075", "Model 075", 75, 0, 0, {0, 0}},   {"part-076", "Model 076", 76, 0, 0, {0, 0}},
    {"part-077", "Model 077", 77, 0, 0, {0, 0}},   {"part-078", "Model 078", 78, 0, 0, {0, 0}},
    {"part-079", "Model 079", 79, 0, 0, {0, 0}},   {"part-080", "Model 080", 80, 0, 0, {0, 0}},
    {"part-081", "Model 081", 81, 0, 0, {0, 0}},   {"part-082", "Model 082", 82, 0, 0, {0, 0}},
    {"part-083", "Model 083", 83, 0, 0, {0, 0}},   {"part-084", "Model 084", 84, 0, 0, {0, 0}},
    {"part-085", "Model 085", 85, 22, 1, {0, 0}},  {"part-086", "Model 086", 86, 0, 0, {0, 0}},
    {"part-087", "Model 087", 87, 0, 0, {0, 0}},   {"part-088", "Model 088", 88, 0, 0, {0, 0}},
    {"part-089", "Model 089", 89, 0, 0, {0, 0}},   {"part-090", "Model 090", 90, 0, 0, {0, 0}},
    {"part-091", "Model 091", 91, 0, 0, {0, 0}},   {"part-092", "Model 092", 92, 0, 0, {0, 0}},
    {"part-093", "Model 093", 93, 0, 0, {0, 0}},   {"part-094", "Model 094", 94, 0, 0, {0, 0}},
    {"part-095", "Model 095", 95, 0, 0, {0, 0}},   {"part-096", "Model 096", 96, 0, 0, {0, 0}},
    {"part-097", "Model 097", 97, 0, 0, {0, 0}},   {"part-098", "Model 098", 98, 0, 0, {0, 0}},
    {"part-099", "Model 099", 99, 0, 0, {0, 0}},   {"part-100", "Model 100", 100, 1, 1, {85, 22}},
    {"part-101", "Model 101", 101, 0, 0, {0, 0}},  {"part-102", "Model 102", 102, 0, 0, {0, 0}},
    {"part-103", "Model 103", 103, 0, 0, {0, 0}},  {"part-104", "Model 104", 104, 0, 0, {0, 0}},
    {"part-105", "Model 105", 105, 22, 6, {0, 0}}, {"part-106", "Model 106", 106, 22, 6, {0, 0}},
    {"part-107", "Model 107", 107, 0, 0, {0, 0}},  {"part-108", "Model 108", 108, 0, 0, {0, 0}},
    {"part-109", "Model 109", 109, 0, 0, {0, 0}},  {"part-110", "Model 110", 110, 0, 0, {0, 0}},
    {"part-111", "Model 111", 111, 0, 0, {0, 0}},  {"part-112", "Model 112", 112, 0, 0, {0, 0}},
    {"part-113", "Model 113", 113, 0, 0, {0, 0}},  {"part-114", "Model 114", 114, 0, 0, {0, 0}},
    {"part-115", "Model 115", 115, 0, 0, {0, 0}},  {"part-116", "Model 116", 116, 0, 0, {0, 0}},
    {"part-117", "Model 117", 117, 0, 0, {0, 0}},  {"part-118", "Model 118", 118, 0, 0, {0, 0}},
    {"part-119", "Model 119", 119, 0, 0, {0, 0}},  {"part-120", "Model 120", 120, 0, 0, {0, 0}},
    {"part-121", "Model 121", 121, 0, 0, {0, 0}},  {"part-122", "Model 122", 122, 0, 0, {0, 0}},
    {"part-123", "Model 123", 123, 0, 0, {0, 0}},  {"part-124", "Model 124", 124, 0, 0, {0, 0}},
    {"part-125", "Model 125", 125, 0, 0, {0, 0}},  {"part-126", "Model 126", 126, 0, 0, {0, 0}},
    {"part-127", "Model 127", 127, 0, 0, {0, 0}},  {"part-128", "Model 128", 128, 0, 0, {0, 0}},
    {"part-129", "Model 129", 129, 0, 0, {0, 0}},  {"part-130", "Model 130", 130, 0, 0, {0, 0}},
    {"part-131", "Model 131", 131, 0, 0, {0, 0}},  {"part-132", "Model 132", 132, 0, 0, {0, 0}},
    {"part-133", "Model 133", 133, 0, 0, {0, 0}},  {"part-134", "Model 134", 134, 0, 0, {0, 0}},
    {"part-135", "Model 135", 135, 0, 0, {0, 0}},  {"part-136", "Model 136", 136, 0, 0, {0, 0}},
    {"part-137", "Model 137", 137, 22, 6, {0, 0}}, {"part-138", "Model 138", 138, 0, 0, {0, 0}},
    {"part-139", "Model 139", 139, 0, 0, {0, 0}},  {"part-140", "Model 140", 140, 0, 0, {0, 0}},
    {"part-141", "Model 141", 141, 0, 0, {0, 0}},
};

constexpr platform_word_t words[] = {
    {"illegal", 0}, {"core", 1},         {"ioframe", 2}, {"cxqamp", 4},  {"emulator", 15},
    {"pnl_g2", 18}, {"vgnstreamer", 22}, {"pnl_g3", 24}, {"camera", 26},
};

}  // namespace

std::span<const platform_model_t> platform_models() { return models; }

std::span<const platform_word_t> platform_words() { return words; }

std::span<const platform_cpus_t> platform_cpus() {
  static const platform_cpus_t rows[] = {
      {0x42, {"cpu0", "cpu1"}, {"cpu2", "cpu3"}, {"cpu4", "cpu5", "cpu6", "cpu7"}},
      {0x49, {"cpu0", "cpu2", "cpu4", "cpu6"}, {"cpu8", "cpu10", "cpu12", "cpu14"}, {"cpu1", "cpu3", "cpu5", "cpu7"}},
      {0x3E, {"cpu0"}, {"cpu3"}, {"cpu1", "cpu2"}},
      {0x46, {"cpu0"}, {"cpu1", "cpu2", "cpu3"}, {}},
      {0x80, {"cpu0"}, {}, {}},
  };
  return rows;
}

}  // namespace zyl
