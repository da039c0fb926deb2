#include "zyl/dev_options.h"

#include <functional>
#include <set>
#include <string>
#include <utility>

#include "zyl/mutex.h"

namespace zyl::dev_options {
namespace {

using words_t = std::set<std::string, std::less<>>;

mutex_t mutex;
words_t words ZYL_GUARDED_BY(mutex);

words_t split(std::string_view text) {
  words_t found;
  for (;;) {
    const auto blank = text.find(' ');
    found.emplace(text.substr(0, blank));
    if (blank == std::string_view::npos) {
      return found;
    }
    text.remove_prefix(blank + 1);
  }
}

}  // namespace

void set(std::string_view text) {
  words_t next = text.empty() ? words_t() : split(text);
  const lock_t lock(mutex);
  words = std::move(next);
}

bool contains(std::string_view word) {
  const lock_t lock(mutex);
  return words.find(word) != words.end();
}

}  // namespace zyl::dev_options
