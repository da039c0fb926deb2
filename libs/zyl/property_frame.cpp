#include "zyl/property_frame.h"

#include <algorithm>
#include <cstdint>

namespace zyl {
namespace {

constexpr std::size_t length_size = 2;

void append_length(std::string& bytes, std::size_t length) {
  bytes.push_back(static_cast<char>(length & 0xFFU));
  bytes.push_back(static_cast<char>(length >> 8U & 0xFFU));
}

std::size_t length_at(std::string_view bytes, std::size_t offset) {
  const auto low = static_cast<uint8_t>(bytes[offset]);
  const auto high = static_cast<uint8_t>(bytes[offset + 1]);
  return std::size_t{low} | std::size_t{high} << 8U;
}

void split_fields(std::string_view payload, std::vector<std::string_view>& out_fields) {
  out_fields.clear();
  while (payload.size() >= length_size) {
    const std::size_t length = length_at(payload, 0);
    payload.remove_prefix(length_size);
    if (payload.size() < length) {
      break;
    }
    out_fields.push_back(payload.substr(0, length));
    payload.remove_prefix(length);
  }
}

/// Where the first magic begins, or the beginning of one that the end cuts off; the size if there is neither.
std::size_t find_frame(std::string_view bytes) {
  const std::size_t whole = bytes.find(property_frame_magic);
  if (whole != std::string_view::npos) {
    return whole;
  }
  std::size_t start = bytes.size() - std::min(bytes.size(), property_frame_magic.size() - 1);
  while (!property_frame_magic.starts_with(bytes.substr(start))) {
    ++start;
  }
  return start;
}

}  // namespace

void append_frame(std::string& bytes, std::initializer_list<std::string_view> fields) {
  std::size_t payload_size = 0;
  for (const std::string_view field : fields) {
    payload_size += length_size + field.size();
  }
  bytes.reserve(bytes.size() + property_frame_header_size + payload_size);
  bytes += property_frame_magic;
  append_length(bytes, payload_size);
  for (const std::string_view field : fields) {
    append_length(bytes, field.size());
    bytes += field;
  }
}

std::string build_frame(std::initializer_list<std::string_view> fields) {
  std::string frame;
  append_frame(frame, fields);
  return frame;
}

// Taken bytes are given back only once they are the greater part, so that many small frames cost no more than one.
void property_frame_buffer_t::append(std::string_view received) {
  if (taken > bytes.size() / 2) {
    bytes.erase(0, taken);
    taken = 0;
  }
  bytes += received;
}

void property_frame_buffer_t::resynchronise() { taken += find_frame(unread()); }

const std::vector<std::string_view>* property_frame_buffer_t::next_frame() {
  const std::string_view front = unread();
  if (front.size() < property_frame_header_size) {
    return nullptr;
  }
  const std::size_t payload_size = length_at(front, property_frame_magic.size());
  if (front.size() < property_frame_header_size + payload_size) {
    return nullptr;
  }
  split_fields(front.substr(property_frame_header_size, payload_size), fields);
  taken += property_frame_header_size + payload_size;
  return &fields;
}

std::optional<std::vector<std::string>> property_frame_buffer_t::take_frame() {
  const auto* frame = next_frame();
  if (frame == nullptr) {
    return std::nullopt;
  }
  return std::vector<std::string>(frame->begin(), frame->end());
}

void property_frame_buffer_t::clear() {
  bytes.clear();
  taken = 0;
}

}  // namespace zyl
