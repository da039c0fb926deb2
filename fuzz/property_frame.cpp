// The frame receiver of the property bus: a byte that says how the rest is cut into chunks, then what a peer sends.
#include "zyl/property_frame.h"

#include "fuzz/plain_property_receiver.h"
#include "fuzz/target.h"

namespace {

using fuzz::frame_t;
using fuzz::require;

/// Sizes of chunks: all in one for 0, else from 1 to 255, as different as they come.
class chunk_sizes_t {
 public:
  explicit chunk_sizes_t(uint8_t seed) : state(seed) {}

  std::size_t next() {
    if (state == 0) {
      return std::string_view::npos;
    }
    state = static_cast<uint8_t>(state * 5U + 1U);
    return state == 0 ? next_of_zero() : state;
  }

 private:
  // A zero would end the sequence.
  std::size_t next_of_zero() {
    state = 1;
    return 1;
  }

  uint8_t state;
};

/// Takes all frames that are whole.
void take_frames(zyl::property_frame_buffer_t& buffer, std::vector<frame_t>& out_frames) {
  buffer.resynchronise();
  while (auto frame = buffer.take_frame()) {
    out_frames.push_back(*std::move(frame));
    buffer.resynchronise();
  }
}

template <typename NextSize>
std::vector<frame_t> receive(std::string_view bytes, zyl::property_frame_buffer_t& buffer, NextSize next_size) {
  std::vector<frame_t> frames;
  while (!bytes.empty()) {
    const std::string_view chunk = bytes.substr(0, next_size());
    bytes.remove_prefix(chunk.size());
    buffer.append(chunk);
    take_frames(buffer, frames);
  }
  return frames;
}

std::vector<frame_t> receive_whole(std::string_view bytes) {
  zyl::property_frame_buffer_t buffer;
  return receive(bytes, buffer, [] { return std::string_view::npos; });
}

std::string encode(const frame_t& frame) {
  switch (frame.size()) {
    case 0:
      return zyl::build_frame({});
    case 1:
      return zyl::build_frame({frame[0]});
    case 2:
      return zyl::build_frame({frame[0], frame[1]});
    default:
      return zyl::build_frame({frame[0], frame[1], frame[2]});
  }
}

void check_encoding(frame_t frame) {
  frame.resize(std::min<std::size_t>(frame.size(), 3));  // no message has more
  require(receive_whole(encode(frame)) == std::vector<frame_t>{frame},
          "a frame that is encoded and received is the same");
}

/// Whatever came before, nothing of it is left when the connection was another one.
void check_clear(zyl::property_frame_buffer_t& buffer, std::string_view bytes, const std::vector<frame_t>& expected) {
  buffer.clear();
  require(buffer.empty(), "a cleared buffer is empty");
  require(receive(bytes, buffer, [] { return std::string_view::npos; }) == expected, "a cleared buffer begins anew");
}

/// Whatever came before: once no frame is under way, the next one is received.
void check_recovery(zyl::property_frame_buffer_t& buffer) {
  const frame_t good{"changed", "/a", "1"};
  std::vector<frame_t> frames;
  buffer.append(encode(good));
  take_frames(buffer, frames);
  require(frames == std::vector<frame_t>{good} && buffer.empty(), "a good frame behind junk is received");
}

void check(std::string_view bytes, uint8_t seed) {
  fuzz::plain_property_receiver_t plain;
  plain.append(bytes);
  std::vector<frame_t> expected;
  while (auto frame = plain.take_frame()) {
    expected.push_back(*std::move(frame));
  }

  zyl::property_frame_buffer_t single;
  require(receive(bytes, single, [] { return std::size_t{1}; }) == expected, "byte by byte gives the same frames");
  zyl::property_frame_buffer_t buffer;
  chunk_sizes_t sizes(seed);
  require(receive(bytes, buffer, [&] { return sizes.next(); }) == expected, "chunks give the same frames");
  require(buffer.empty() == plain.left().empty(), "the same is left");

  for (const frame_t& frame : expected) {
    check_encoding(frame);
  }
  if (plain.left().size() < zyl::property_frame_magic.size()) {
    check_recovery(buffer);
    check_recovery(single);
  }
  check_clear(single, bytes, expected);
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::input_t input(data, size);
  const uint8_t seed = input.take_byte();
  check(input.rest(), seed);
  return 0;
}
