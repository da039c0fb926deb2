// The engine link's streams: a byte for the order of the bytes, a text of what to read, then the stream.
#include "zyl/datastream.h"

#include "fuzz/target.h"

namespace {

using fuzz::require;

/// The stream as one would read it by hand.
class plain_stream_t {
 public:
  plain_stream_t(std::string_view bytes, bool reversed) : left(bytes), swap(reversed) {}

  /// Bytes that are not there count as zeros.
  uint32_t take_integer(std::size_t size) {
    uint32_t value = 0;
    for (std::size_t i = 0; i < size && !left.empty(); ++i) {
      const std::size_t place = swap ? size - 1 - i : i;
      value |= static_cast<uint32_t>(static_cast<uint8_t>(left.front())) << (8 * place);
      left.remove_prefix(1);
    }
    return value;
  }

  std::string_view take_text() {
    const uint32_t length = take_integer(sizeof(uint32_t));
    const std::string_view text = left.substr(0, length);
    left.remove_prefix(text.size());
    return text;
  }

  std::string_view rest() const { return left; }

 private:
  std::string_view left;
  bool swap;
};

template <typename T>
T read(zyl::datastream_t& stream) {
  T value{};
  stream >> value;
  return value;
}

/// Reads one value from both, checks that it is the same, and writes it to `out_copy`.
template <typename T>
void check_integer(zyl::datastream_t& stream, plain_stream_t& plain, zyl::datastream_t& out_copy) {
  const T value = read<T>(stream);
  require(value == static_cast<T>(plain.take_integer(sizeof(T))), "an integer is what its bytes say");
  out_copy << value;
}

void check_bool(zyl::datastream_t& stream, plain_stream_t& plain, zyl::datastream_t& out_copy) {
  const bool value = read<bool>(stream);
  require(value == (plain.take_integer(1) != 0), "a truth value is what its byte says");
  out_copy << value;
}

void check_string(zyl::datastream_t& stream, plain_stream_t& plain, zyl::datastream_t& out_copy) {
  const std::string value = read<std::string>(stream);
  require(value == plain.take_text(), "a string is what its length says, or what there is of it");
  out_copy << value;
}

using check_t = void (*)(zyl::datastream_t& stream, plain_stream_t& plain, zyl::datastream_t& out_copy);
constexpr check_t checks[] = {check_integer<uint8_t>,
                              check_integer<int8_t>,
                              check_integer<uint16_t>,
                              check_integer<int16_t>,
                              check_integer<uint32_t>,
                              check_integer<int32_t>,
                              check_bool,
                              check_string};

zyl::datastream_strio_t stream_of(std::string_view bytes, bool swap) {
  zyl::datastream_strio_t stream{std::string(bytes)};
  stream.swap = swap;
  return stream;
}

/// Reads `bytes` as the kinds of value that `kinds` names, and returns these values written again.
std::string read_and_write(std::string_view kinds, std::string_view bytes, bool swap) {
  zyl::datastream_strio_t stream = stream_of(bytes, swap);
  zyl::datastream_strio_t copy = stream_of("", swap);
  plain_stream_t plain(bytes, swap);
  for (const char kind : kinds) {
    checks[static_cast<uint8_t>(kind) % std::size(checks)](stream, plain, copy);
    require(stream.data() == plain.rest(), "the same is left");
  }
  return std::string(copy.data());
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::input_t input(data, size);
  const bool swap = (input.take_byte() & 1) != 0;
  const std::string_view kinds = input.take_text();
  const std::string written = read_and_write(kinds, input.rest(), swap);
  require(read_and_write(kinds, written, swap) == written, "what was written reads the same");
  return 0;
}
