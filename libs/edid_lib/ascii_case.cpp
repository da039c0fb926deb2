#include "edid_lib/ascii_case.h"

#include <algorithm>

namespace edid_lib {
namespace {

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool same_letter(char a, char b) { return lower(a) == lower(b); }

}  // namespace

bool same_ignoring_case(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), same_letter);
}

bool contains_ignoring_case(std::string_view text, std::string_view part) {
  return std::search(text.begin(), text.end(), part.begin(), part.end(), same_letter) != text.end();
}

}  // namespace edid_lib
