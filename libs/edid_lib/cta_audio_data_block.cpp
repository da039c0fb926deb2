#include "edid_lib/cta_audio_data_block.h"

#include <algorithm>
#include <iterator>

#include "edid_lib/visitor.h"

namespace edid_lib {
namespace {

constexpr uint8_t format_shift = 3;
constexpr uint8_t format_mask = 15 << format_shift;
constexpr uint8_t channels_mask = 7;
constexpr uint8_t rates_mask = 0x7F;
constexpr uint32_t no_channels = 0xFFFFFFFF;
constexpr std::size_t most_descriptors = 10;

constexpr std::string_view invalid = "Invalid";
constexpr std::string_view formats[] = {invalid,
                                        "Linear Pulse Code Modulation (LPCM)",
                                        "AC-3",
                                        "MPEG1",
                                        "MP3",
                                        "MPEG2",
                                        "AAC",
                                        "DTS",
                                        "ATRAC",
                                        "One-bit Audio (SACD)",
                                        "DD+",
                                        "DTS-HD",
                                        "Dolby TrueHD",
                                        "DST Audio",
                                        "Microsoft WMA Pro"};

constexpr std::string_view rate_words[] = {"32 kHz ", "44.1 kHz ",  "48 kHz ", "88.2 kHz ",
                                           "96 kHz ", "176.4 kHz ", "192 kHz "};
constexpr std::string_view depth_words[] = {"16 bit ", "20 bit ", "24 bit "};

template <std::size_t count>
std::string words_of_bits(const std::string_view (&words)[count], uint8_t bits) {
  std::string text;
  for (std::size_t i = 0; i < count; ++i) {
    if ((bits >> i & 1) != 0) {
      text += words[i];
    }
  }
  return text;
}

}  // namespace

cta_audio_data_block_t::cta_audio_data_block_t(std::size_t descriptors)
    : cta_data_block_t(own_tag, 1 + std::min(descriptors, most_descriptors) * descriptor_size) {}

void cta_audio_data_block_t::accept(visitor_t* visitor, bool forward) {
  if (visitor != nullptr) {
    visitor->visit(this, forward);
  }
}

uint32_t cta_audio_data_block_t::format(std::size_t descriptor) const {
  return has(descriptor) ? static_cast<uint32_t>((byte(first_byte_of(descriptor)) & format_mask) >> format_shift) : 0;
}

void cta_audio_data_block_t::set_format(uint32_t format, std::size_t descriptor) {
  if (has(descriptor)) {
    set_bits(first_byte_of(descriptor), format_mask, static_cast<uint8_t>(format << format_shift));
  }
}

uint32_t cta_audio_data_block_t::channels(std::size_t descriptor) const {
  return has(descriptor) ? (byte(first_byte_of(descriptor)) & channels_mask) + 1U : no_channels;
}

void cta_audio_data_block_t::set_channels(uint32_t channels, std::size_t descriptor) {
  if (has(descriptor)) {
    set_bits(first_byte_of(descriptor), channels_mask, static_cast<uint8_t>(channels - 1));
  }
}

uint8_t cta_audio_data_block_t::sample_rates(std::size_t descriptor) const {
  return has(descriptor) ? static_cast<uint8_t>(data[first_byte_of(descriptor) + 1U] & rates_mask) : uint8_t{0};
}

void cta_audio_data_block_t::set_sample_rates(uint8_t rates, std::size_t descriptor) {
  if (has(descriptor)) {
    data[first_byte_of(descriptor) + 1U] = rates & rates_mask;
  }
}

uint8_t cta_audio_data_block_t::third_byte(std::size_t descriptor) const {
  return has(descriptor) ? data[first_byte_of(descriptor) + 2U] : uint8_t{0};
}

void cta_audio_data_block_t::set_third_byte(uint8_t value, std::size_t descriptor) {
  if (has(descriptor)) {
    data[first_byte_of(descriptor) + 2U] = value;
  }
}

std::string_view audio_format_text(uint32_t format) { return format < std::size(formats) ? formats[format] : invalid; }

std::string sample_rates_text(uint8_t rates) { return words_of_bits(rate_words, rates); }

std::string bit_depths_text(uint8_t depths) { return words_of_bits(depth_words, depths); }

}  // namespace edid_lib
