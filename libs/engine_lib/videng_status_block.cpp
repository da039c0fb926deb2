#include "engine_lib/videng_status_block.h"

#include <algorithm>
#include <cstring>

#include "zyl/assert.h"

namespace videng {
namespace {

constexpr std::size_t encoder_count = 4;
constexpr std::size_t encoder_size = 972;
constexpr std::size_t decoders_offset = 0x0F30;
constexpr std::size_t raw_out_config_result_offset = 80;

constexpr std::size_t end_of(const named_table_t& table) { return table.offset + table.count * table.stride; }

static_assert(encoder_count * encoder_size == decoders_offset);
static_assert(decoders_offset + decoder_count * decoder_entry_t::size == uvcs.offset);
static_assert(end_of(uvcs) == mc_hdmi_outs.offset);
static_assert(end_of(mc_hdmi_outs) == raw_outs.offset);
static_assert(end_of(raw_outs) == mc_rtsp_outs.offset);
static_assert(end_of(mc_rtsp_outs) == status_block_t::size);

constexpr std::array depayloader_words{
    "none", "visengi", "mediacast_rtsp", "mediacast_file", "mediacast_dmabuf", "mediacast_v4l2", "null",
};

/// Bytes `first` to `last`, both inclusive and whole words.
void clear_words(std::byte* entry, std::size_t first, std::size_t last) {
  for (std::size_t offset = first; offset < last; offset += sizeof(uint32_t)) {
    status_word_t(entry + offset).store(0);
  }
}

}  // namespace

const char* depayloader_word(int32_t kind) {
  const auto index = static_cast<std::size_t>(kind);
  return kind >= 0 && index < depayloader_words.size() ? depayloader_words[index] : "unknown";
}

void decoder_entry_t::clear_counters() const {
  clear_words(start, 20, 43);
  clear_words(start, 48, 59);
  clear_words(start, 64, 67);
}

status_block_t::status_block_t(std::span<std::byte> mapped) : start(mapped.data()) {
  ZYL_ASSERT(mapped.size() >= size);
}

decoder_entry_t status_block_t::decoder(std::size_t index) const {
  ZYL_ASSERT(index < decoder_count);
  return decoder_entry_t(start + decoders_offset + index * decoder_entry_t::size);
}

status_result_t status_block_t::raw_out_config_result(std::size_t index) const {
  return status_result_t(entry(raw_outs, index) + raw_out_config_result_offset);
}

std::string status_block_t::name(const named_table_t& table, std::size_t index) const {
  const auto* text = reinterpret_cast<const char*>(entry(table, index));
  return {text, strnlen(text, table.name_size)};
}

void status_block_t::set_name(const named_table_t& table, std::size_t index, std::string_view name) const {
  std::byte* text = entry(table, index);
  std::memset(text, 0, table.name_size);
  std::memcpy(text, name.data(), std::min(name.size(), table.name_size - 1));
}

std::byte* status_block_t::entry(const named_table_t& table, std::size_t index) const {
  ZYL_ASSERT(index < table.count);
  return start + table.offset + index * table.stride;
}

}  // namespace videng
