#include "zyl/datastream.h"

namespace zyl {

datastream_strio_t& datastream_strio_t::operator=(datastream_strio_t&& other) noexcept {
  swap = other.swap;
  buffer = std::exchange(other.buffer, {});
  position = std::exchange(other.position, 0);
  return *this;
}

std::size_t datastream_strio_t::read(void* dst, std::size_t n) {
  const std::string_view rest = data();
  const std::size_t count = std::min(n, rest.size());
  if (dst != nullptr && count != 0) {
    std::memcpy(dst, rest.data(), count);
  }
  position += count;
  if (position == buffer.size()) {
    buffer.clear();
    position = 0;
  }
  return count;
}

std::size_t datastream_strio_t::write(const void* src, std::size_t n) {
  buffer.append(static_cast<const char*>(src), n);
  return n;
}

datastream_t& operator>>(datastream_t& in, std::string& s) {
  s.clear();
  uint32_t left = 0;
  in >> left;
  std::array<char, 256> chunk{};
  while (left != 0) {
    const std::size_t count = in.read(chunk.data(), std::min<std::size_t>(left, chunk.size()));
    if (count == 0) {
      break;
    }
    s.append(chunk.data(), count);
    left -= static_cast<uint32_t>(count);
  }
  return in;
}

}  // namespace zyl
