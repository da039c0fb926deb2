#include "engine_lib/engine_ipc_crc.h"

#include <array>

namespace eipc {
namespace {

constexpr std::array<uint32_t, 256> make_table() {
  std::array<uint32_t, 256> table{};
  for (uint32_t i = 0; i < table.size(); ++i) {
    uint32_t value = i;
    for (int bit = 0; bit < 8; ++bit) {
      value = (value & 1) != 0 ? (value >> 1) ^ 0xEDB88320U : value >> 1;
    }
    table[i] = value;
  }
  return table;
}

constexpr std::array<uint32_t, 256> table = make_table();
static_assert(table[1] == 0x77073096U && table[255] == 0x2D02EF8DU, "the published table");

}  // namespace

uint32_t crc32(std::string_view bytes) {
  uint32_t crc = 0xFFFFFFFFU;
  for (const char byte : bytes) {
    crc = (crc >> 8) ^ table[(crc ^ static_cast<uint8_t>(byte)) & 0xFFU];
  }
  return ~crc;
}

}  // namespace eipc
