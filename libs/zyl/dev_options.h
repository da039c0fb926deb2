#pragma once

#include <string_view>

/// The development options of the process: a set of words that anyone may ask for. Any thread.
namespace zyl::dev_options {

/// Replaces the set by the words of `text`, which single blanks part: a blank at either end, or two in a row, make the
/// word "". An empty text holds no word.
void set(std::string_view text);

/// Whether the last `set` named the word.
bool contains(std::string_view word);

}  // namespace zyl::dev_options
