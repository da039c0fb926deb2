#include "edid_lib/color_format.h"

#include <algorithm>
#include <istream>
#include <ostream>
#include <span>
#include <string>

#include "edid_lib/ascii_case.h"
#include "edid_lib/timing_lookup.h"

namespace edid_lib {
namespace {

using words_t = std::span<const std::string_view>;

constexpr std::string_view standard_words[] = {"Default",   "BT.601",   "BT.709",     "BT.2020",        "sRGB",
                                               "SMPTE 170", "AdobeRGB", "DCI-P3 D65", "DCI-P3 Theatre", "x.v.Color"};
constexpr std::string_view encoding_words[] = {"Default", "RGB", "YCC", "Constant Luminance YCC"};
constexpr std::string_view chroma_words[] = {"Default", "444", "422", "420"};
constexpr std::string_view range_words[] = {"Default", "Full", "Limited"};
constexpr std::string_view depth_words[] = {"Default", "24 bit", "30 bit", "36 bit", "48 bit"};

/// The words of the enumeration that the argument is of, by value.
words_t words_of(color_standard_t) { return standard_words; }
words_t words_of(color_encoding_t) { return encoding_words; }
words_t words_of(chroma_sampling_t) { return chroma_words; }
words_t words_of(color_range_t) { return range_words; }
words_t words_of(color_depth_t) { return depth_words; }

/// Takes the text up to the next comma off `list`.
std::string_view take_item(std::string_view& list) {
  const std::string_view item = list.substr(0, list.find(','));
  list.remove_prefix(std::min(item.size() + 1, list.size()));
  return item;
}

template <typename Enum>
void take(std::string_view& list, Enum& value) {
  value = color_value<Enum>(take_item(list));
}

}  // namespace

template <typename Enum>
std::string_view color_word(Enum value) {
  const words_t words = words_of(value);
  const auto index = static_cast<uint32_t>(value);
  return index < words.size() ? words[index] : "Unknown";
}

template <typename Enum>
Enum color_value(std::string_view word) {
  const words_t words = words_of(Enum{});
  const auto found = std::find_if(words.begin(), words.end(),
                                  [word](std::string_view known) { return same_ignoring_case(known, word); });
  return found != words.end() ? static_cast<Enum>(found - words.begin()) : Enum{};
}

template std::string_view color_word(color_standard_t);
template std::string_view color_word(color_encoding_t);
template std::string_view color_word(chroma_sampling_t);
template std::string_view color_word(color_range_t);
template std::string_view color_word(color_depth_t);
template color_standard_t color_value(std::string_view);
template color_encoding_t color_value(std::string_view);
template chroma_sampling_t color_value(std::string_view);
template color_range_t color_value(std::string_view);
template color_depth_t color_value(std::string_view);

std::ostream& operator<<(std::ostream& out, const color_format_t& format) {
  return out << "color_format_t{" << color_word(format.colorimetry) << ',' << color_word(format.encoding) << ','
             << color_word(format.chroma) << ',' << color_word(format.range) << ',' << color_word(format.depth) << '}';
}

std::istream& operator>>(std::istream& in, color_format_t& format) {
  std::string name;
  std::getline(in, name, '{');
  if (!same_ignoring_case(name, "color_format_t")) {
    return in;
  }
  std::string text;
  std::getline(in, text, '}');
  std::string_view list = text;
  take(list, format.colorimetry);
  take(list, format.encoding);
  take(list, format.chroma);
  take(list, format.range);
  take(list, format.depth);
  return in;
}

std::ostream& operator<<(std::ostream& out, const colorimetry_t& colorimetry) {
  return out << "colorimetry_t{" << color_word(colorimetry.colorimetry) << ", " << color_word(colorimetry.encoding)
             << '}';
}

color_standard_t default_colorimetry(const vid_resolution_t& mode) {
  return mode.is_4_3() && is_cta(mode) ? color_standard_t::bt_601 : color_standard_t::bt_709;
}

color_range_t default_range(const vid_resolution_t& mode, color_encoding_t encoding) {
  if (encoding == color_encoding_t::ycc) {
    return color_range_t::limited;
  }
  const bool is_vga = mode.width == 640 && mode.height == 480;
  return is_vga || !is_cta(mode) ? color_range_t::full : color_range_t::limited;
}

}  // namespace edid_lib
