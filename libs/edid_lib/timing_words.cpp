#include "edid_lib/timing_words.h"

#include <algorithm>
#include <iterator>

namespace edid_lib {
namespace {

constexpr std::string_view type_texts[] = {
    "undefined type", "Established Timing", "DMT Timing", "GFT Timing", "CVT Timing", "CTA Timing", "HDMI Timing",
};

constexpr std::string_view location_texts[] = {
    "undefined location",
    "Established Block",
    "Standard Block",
    "Detailed Timing Descriptor",
    "CTA Extension Video Data Block",
    "CTA Extension HDMI Vendor Specific Data Block",
};

template <typename Enum, std::size_t count>
std::string_view text_in(const std::string_view (&texts)[count], Enum value) {
  const auto index = static_cast<uint32_t>(value);
  return texts[index < count ? index : 0];
}

template <typename Enum, std::size_t count>
Enum value_in(const std::string_view (&texts)[count], std::string_view text) {
  const auto found = std::find(std::begin(texts), std::end(texts), text);
  return found != std::end(texts) ? static_cast<Enum>(found - std::begin(texts)) : Enum{};
}

}  // namespace

std::string_view text_of(timing_type_t type) { return text_in(type_texts, type); }

std::string_view text_of(timing_location_t location) { return text_in(location_texts, location); }

timing_type_t timing_type_of(std::string_view text) { return value_in<timing_type_t>(type_texts, text); }

timing_location_t timing_location_of(std::string_view text) {
  return value_in<timing_location_t>(location_texts, text);
}

}  // namespace edid_lib
