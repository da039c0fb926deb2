#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zyl {

// Frames of the property bus, the same in both directions. Integers are 16-bit unsigned, little-endian.
//
//   offset  size  frame
//   0       9     magic, the ASCII bytes "ipc_magic" without terminator
//   9       2     payload length, the number of bytes that follow
//   11      n     payload, a sequence of fields
//
//   offset  size  field
//   0       2     length of the text in bytes
//   2       n     text, raw bytes without terminator

/// What every frame begins with.
inline constexpr std::string_view property_frame_magic = "ipc_magic";

/// Bytes of a frame in front of its payload.
inline constexpr std::size_t property_frame_header_size = 11;

/// Bytes of a path and its value together that every frame of theirs can carry: a payload has at most 65535, three of
/// its fields have a length each, and "get_response" is the longest command in front of the two.
inline constexpr std::size_t longest_property = 65535 - 3 * 2 - std::string_view("get_response").size();

/// The frame that carries `fields`. Lengths are truncated to 16 bits without a check, so a field or a payload beyond
/// 65535 bytes gives a corrupt frame. Any thread.
std::string build_frame(std::initializer_list<std::string_view> fields);

/// Puts that frame behind `bytes`, whose memory can so be used again.
void append_frame(std::string& bytes, std::initializer_list<std::string_view> fields);

/// Bytes received and not yet framed. Each byte is moved a bounded number of times, whatever a peer sends; once it has
/// grown to what is usual, a frame costs no memory. One thread.
class property_frame_buffer_t {
 public:
  /// Adds what was received.
  void append(std::string_view received);

  /// Drops leading bytes up to the next magic, or up to a beginning of one at the very end. Garbage and the rest of
  /// broken frames are skipped so.
  void resynchronise();

  /// Takes the frame at the front and returns its fields; a truncated last field is dropped. Null while the frame is
  /// not whole. The buffer must be synchronised. The fields lie in the buffer: they are gone with the next `append`,
  /// `next_frame` or `clear`.
  const std::vector<std::string_view>* next_frame();

  /// `next_frame`, with fields to keep.
  std::optional<std::vector<std::string>> take_frame();

  /// Whether no byte is left.
  bool empty() const { return unread().empty(); }

  void clear();

 private:
  std::string_view unread() const { return std::string_view(bytes).substr(taken); }

  std::string bytes;
  std::size_t taken = 0;
  std::vector<std::string_view> fields;
};

}  // namespace zyl
