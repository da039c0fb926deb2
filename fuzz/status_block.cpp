// The status block that the video engine fills: patches of a zeroed one, each an offset of two bytes, a length byte and
// the bytes.
#include "engine_lib/videng_status_block.h"

#include <cstring>
#include <memory>

#include "fuzz/target.h"

namespace {

using fuzz::require;
using videng::status_block_t;

constexpr std::size_t size_of_block = 18712;

struct image_t {
  alignas(8) std::array<std::byte, size_of_block> bytes{};
};

void patch(image_t& image, fuzz::input_t& input) {
  const std::size_t low = input.take_byte();
  const std::size_t offset = (low | std::size_t{input.take_byte()} << 8U) % size_of_block;
  const std::string_view bytes = input.take_text();
  std::memcpy(image.bytes.data() + offset, bytes.data(), std::min(bytes.size(), size_of_block - offset));
}

uint32_t word_at(const image_t& image, std::size_t offset) {
  uint32_t word = 0;
  std::memcpy(&word, image.bytes.data() + offset, sizeof word);
  return word;
}

void check_decoder(const image_t& image, const videng::decoder_entry_t& decoder, std::size_t start) {
  require(static_cast<uint32_t>(decoder.type().load()) == word_at(image, start), "type");
  require(static_cast<uint32_t>(decoder.instance().load()) == word_at(image, start + 4), "instance");
  require(decoder.payload_count().load() == word_at(image, start + 12), "payload_count");
  require(decoder.rx_count().load() == word_at(image, start + 16), "rx_count");
  require(decoder.decrypt_err_count().load() == word_at(image, start + 36), "decrypt_err_count");
  require(decoder.frame_count().load() == word_at(image, start + 56), "frame_count");
  require(static_cast<uint32_t>(decoder.config_result().load()) == word_at(image, start + 68), "config_result");
  require(decoder.decoded_count().load() == word_at(image, start + 72), "decoded_count");
  require(*videng::depayloader_word(decoder.type().load()) != '\0', "each kind has a word");
}

/// Clearing its counters leaves what belongs to the engine, and all other decoders.
void check_clear(image_t& image, const status_block_t& block, std::size_t index) {
  const auto before = std::make_unique<image_t>(image);
  const std::size_t start = 0x0F30 + index * 400;
  block.decoder(index).clear_counters();
  for (std::size_t at = 0; at < size_of_block; ++at) {
    const std::size_t place = at - start;  // huge in front of the entry
    const bool counter = (place >= 20 && place < 44) || (place >= 48 && place < 60) || (place >= 64 && place < 68);
    require(image.bytes[at] == (counter ? std::byte{0} : before->bytes[at]), "counters and nothing else are cleared");
  }
}

void check_names(const image_t& image, const status_block_t& block, const videng::named_table_t& table) {
  for (std::size_t i = 0; i < table.count; ++i) {
    const std::byte* start = image.bytes.data() + table.offset + i * table.stride;
    const std::string name = block.name(table, i);
    require(name.size() <= table.name_size, "a name ends with its field");
    require(std::memcmp(name.data(), start, name.size()) == 0, "a name is what its field holds");
    require(name.find('\0') == std::string::npos, "a name holds no NUL");
    require(name.size() == table.name_size || start[name.size()] == std::byte{0}, "a name ends at a NUL");
  }
}

/// What is set is read, cut to its field, and the next entry keeps its own.
void check_set_name(const status_block_t& block, const videng::named_table_t& table, std::string_view name) {
  const std::string next = block.name(table, 1);
  block.set_name(table, 0, name);
  const std::string_view cut = name.substr(0, table.name_size - 1);
  require(block.name(table, 0) == cut.substr(0, cut.find('\0')), "a name that is set is read");
  require(block.name(table, 1) == next, "a name that is set leaves the next one");
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  fuzz::input_t input(data, size);
  const std::size_t index = input.take_byte() % videng::decoder_count;
  const std::string_view name = input.take_text();
  // On the heap, where a sanitizer sees what reaches behind it.
  const auto image = std::make_unique<image_t>();
  while (!input.empty()) {
    patch(*image, input);
  }
  const status_block_t block(image->bytes);
  for (std::size_t i = 0; i < videng::decoder_count; ++i) {
    check_decoder(*image, block.decoder(i), 0x0F30 + i * 400);
  }
  for (std::size_t i = 0; i < videng::raw_outs.count; ++i) {
    const auto result = static_cast<uint32_t>(block.raw_out_config_result(i).load());
    require(result == word_at(*image, 0x3840 + i * 84 + 80), "config_result of a raw output");
  }
  check_clear(*image, block, index);
  for (const auto* table : {&videng::uvcs, &videng::mc_hdmi_outs, &videng::raw_outs, &videng::mc_rtsp_outs}) {
    check_names(*image, block, *table);
    check_set_name(block, *table, name);
  }
  return 0;
}
