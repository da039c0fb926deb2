#include <algorithm>
#include <cerrno>
#include <charconv>
#include <clocale>
#include <cmath>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>

#include "edid_lib/ascii_case.h"
#include "edid_lib/vid_resolution.h"

namespace edid_lib {
namespace {

/// Takes the next word off `text`; empty when there is none left.
std::string_view take_word(std::string_view& text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  const std::string_view word = text.substr(0, text.find(' '));
  text.remove_prefix(word.size());
  return word;
}

int32_t parse_whole_number(std::string_view text) {
  std::string_view digits = text;
  if (digits.size() > 1 && digits[0] == '+' && digits[1] != '-') {
    digits.remove_prefix(1);
  }
  int32_t value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
  if (error == std::errc::invalid_argument || end != digits.data() + digits.size()) {
    throw std::invalid_argument("not a whole number: " + std::string(text));
  }
  if (error == std::errc::result_out_of_range) {
    throw std::out_of_range("number out of range: " + std::string(text));
  }
  return value;
}

/// Modes are written with a decimal point, whatever locale the program has set.
locale_t point_locale() {
  static const locale_t locale = newlocale(LC_ALL_MASK, "C", nullptr);
  return locale;
}

/// Whether `text` is a number as modes have it: digits, perhaps with a point among them, not many.
bool is_plain_number(std::string_view text) {
  constexpr std::size_t most_characters = 12;
  return !text.empty() && text.size() <= most_characters && text[0] != '.' &&
         text.find_first_not_of("0123456789.") == std::string_view::npos;
}

/// A numeric prefix counts, "60Hz" is 60; 0 without one, and for a number that a float does not hold.
float parse_float(std::string_view text) {
  if (is_plain_number(text)) {
    float value = 0;
    std::from_chars(text.data(), text.data() + text.size(), value);
    return value;
  }
  const std::string terminated(text);
  char* end = nullptr;
  errno = 0;
  const float value = strtof_l(terminated.c_str(), &end, point_locale());
  return end == terminated.c_str() || errno == ERANGE ? 0 : value;
}

std::pair<float, float> parse_aspect(std::string_view word) {
  const auto colon = word.find(':');
  if (colon == std::string_view::npos || word.find(':', colon + 1) != std::string_view::npos) {
    return {-1.0F, 1.0F};
  }
  return {parse_float(word.substr(0, colon)), parse_float(word.substr(colon + 1))};
}

void parse_size(std::string_view text, vid_resolution_t& mode) {
  const auto separator = text.find('x');
  if (separator == std::string_view::npos || text.find('x', separator + 1) != std::string_view::npos) {
    return;
  }
  mode.width = parse_whole_number(text.substr(0, separator));
  mode.height = parse_whole_number(text.substr(separator + 1));
}

/// The first word: size, scan and rate.
void parse_picture(std::string_view word, vid_resolution_t& mode) {
  auto separator = word.find('@');
  if (separator == std::string_view::npos) {
    separator = word.find('p');
  }
  if (separator == std::string_view::npos) {
    separator = word.find('i');
    mode.interlaced = separator != std::string_view::npos;
  }
  if (separator == std::string_view::npos) {
    return;
  }
  std::string_view size = word.substr(0, separator);
  if (size.ends_with('i')) {
    mode.interlaced = true;
    size.remove_suffix(1);
  }
  parse_size(size, mode);
  mode.fps = parse_float(word.substr(separator + 1));
}

void parse_suffix(std::string_view word, vid_resolution_t& mode) {
  mode.reduced_blanking = contains_ignoring_case(word, reduced_blanking_word);
  std::tie(mode.pixel_aspect_x, mode.pixel_aspect_y) = parse_aspect(word);
  mode.preferred = contains_ignoring_case(word, preferred_word);
}

/// Puts a text together without going to the heap for each piece.
class text_buffer_t {
 public:
  void add(std::string_view text) { used += text.copy(characters + used, sizeof characters - used); }
  void add(int32_t number) { end_at(std::to_chars(characters + used, std::end(characters), number).ptr); }

  /// As a stream writes it: at most six digits, and no point behind a whole number.
  void add(float number) {
    end_at(std::to_chars(characters + used, std::end(characters), number, std::chars_format::general, 6).ptr);
  }

  std::string text() const { return {characters, used}; }

 private:
  void end_at(const char* end) { used = static_cast<std::size_t>(end - characters); }

  char characters[80] = {};  ///< Two numbers, a rate and two aspects, the longest of them.
  std::size_t used = 0;
};

text_buffer_t picture_text(const vid_resolution_t& mode, std::string_view progressive, std::string_view interlaced) {
  text_buffer_t buffer;
  buffer.add(mode.width);
  buffer.add("x");
  buffer.add(mode.height);
  buffer.add(mode.interlaced ? interlaced : progressive);
  buffer.add(mode.rate_text());
  if (mode.reduced_blanking) {
    buffer.add(" ");
    buffer.add(reduced_blanking_word);
  }
  return buffer;
}

/// Cuts the fraction off. What a 32-bit number does not hold becomes the nearest that it does; not a number is 0.
int64_t truncate(float value) {
  constexpr float limit = 2147483648.0F;
  return std::isnan(value) ? 0 : static_cast<int64_t>(std::clamp(value, -limit, limit));
}

std::string ratio_text(int64_t x, int64_t y) {
  if (x == 8 && y == 5) {
    return "16:10";
  }
  if (x == 64 && y == 27) {
    return "21:9";
  }
  return std::to_string(x) + ":" + std::to_string(y);
}

}  // namespace

vid_resolution_t::vid_resolution_t(std::string_view text) {
  parse_picture(take_word(text), *this);
  for (std::string_view word = take_word(text); !word.empty(); word = take_word(text)) {
    parse_suffix(word, *this);
  }
}

std::string vid_resolution_t::key() const {
  text_buffer_t buffer = picture_text(*this, "@", "i@");
  if (has_aspect_in_text()) {
    buffer.add(" ");
    buffer.add(pixel_aspect_x);
    buffer.add(":");
    buffer.add(pixel_aspect_y);
  }
  return buffer.text();
}

std::string vid_resolution_t::to_string() const {
  std::string text = picture_text(*this, "p", "i").text();
  if (has_aspect_in_text()) {
    text += " " + aspect_ratio();
  }
  if (!comment.empty()) {
    text += " " + comment;
  }
  return text;
}

std::string vid_resolution_t::list_text() const {
  std::string text = to_string();
  if (preferred) {
    text.append(" ").append(preferred_word);
  }
  return text;
}

std::string vid_resolution_t::aspect_ratio() const {
  const int64_t x = truncate(static_cast<float>(width) * pixel_aspect_x);
  const int64_t y = truncate(static_cast<float>(height) * pixel_aspect_y);
  if (y == 0) {
    return x == 0 ? "0:0" : "1:0";
  }
  const int64_t divisor = std::gcd(x, y);
  return ratio_text(x / divisor, y / divisor);
}

}  // namespace edid_lib
