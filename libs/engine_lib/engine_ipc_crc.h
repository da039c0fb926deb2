#pragma once

#include <cstdint>
#include <string_view>

namespace eipc {

/// The CRC-32 of IEEE 802.3 in reflected form: polynomial 0xEDB88320, initial value and final inversion 0xFFFFFFFF.
/// 0 for no bytes.
uint32_t crc32(std::string_view bytes);

}  // namespace eipc
