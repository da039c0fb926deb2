#include <locale.h>
#include <stdlib.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>
#include <numeric>
#include <stdexcept>
#include <string>
#include <tuple>
#include <utility>

#include "edid_lib/rate_text.h"
#include "edid_lib/vid_resolution.h"

namespace edid_lib {
namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool contains_word(std::string_view text, std::string_view word) {
  const auto same = [](char a, char b) { return lower(a) == lower(b); };
  return std::search(text.begin(), text.end(), word.begin(), word.end(), same) != text.end();
}

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

/// A numeric prefix counts, "60Hz" is 60; 0 without one, and for a number that a float does not hold.
float parse_float(std::string_view text) {
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
  mode.reduced_blanking = contains_word(word, reduced_blanking_word);
  std::tie(mode.pixel_aspect_x, mode.pixel_aspect_y) = parse_aspect(word);
  mode.preferred = contains_word(word, preferred_word);
}

/// What a stream makes of a float: at most six digits, and no point behind a whole number.
std::string stream_text(float value) {
  char text[32];
  const auto result = std::to_chars(std::begin(text), std::end(text), value, std::chars_format::general, 6);
  return {text, result.ptr};
}

std::string picture_text(const vid_resolution_t& mode, std::string_view progressive, std::string_view interlaced) {
  std::string text = std::to_string(mode.width) + "x" + std::to_string(mode.height);
  text += mode.interlaced ? interlaced : progressive;
  text += rate_text_t(mode.nominal_fps()).view();
  if (mode.reduced_blanking) {
    text.append(" ").append(reduced_blanking_word);
  }
  return text;
}

bool has_square_pixels_by_default(const vid_resolution_t& mode) {
  return mode.pixel_aspect_x == 1 && mode.pixel_aspect_y == 1;
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

rate_text_t::rate_text_t(float rate) {
  const int decimals = rate == std::trunc(rate) ? 0 : 2;
  const auto result =
      std::to_chars(std::begin(characters), std::end(characters), rate, std::chars_format::fixed, decimals);
  length = static_cast<std::size_t>(result.ptr - characters);
}

vid_resolution_t::vid_resolution_t(std::string_view text) {
  parse_picture(take_word(text), *this);
  for (std::string_view word = take_word(text); !word.empty(); word = take_word(text)) {
    parse_suffix(word, *this);
  }
}

std::string vid_resolution_t::key() const {
  std::string text = picture_text(*this, "@", "i@");
  if (!has_square_pixels_by_default(*this)) {
    text += " " + stream_text(pixel_aspect_x) + ":" + stream_text(pixel_aspect_y);
  }
  return text;
}

std::string vid_resolution_t::to_string() const {
  std::string text = picture_text(*this, "p", "i");
  if (!has_square_pixels_by_default(*this)) {
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
