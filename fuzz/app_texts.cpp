// Texts that reach the daemon from outside and decide what it does: the coordinator's sizes, the variable that blocks
// the video side, the words of the development options, the names in /proc.
#include "app/block_check.h"
#include "app/process_scan.h"
#include "app/published_resolution.h"
#include "fuzz/target.h"
#include "zyl/dev_options.h"

namespace {

using fuzz::require;

/// Two numbers with an "x" between, as a size that is published must be.
struct size_text_t {
  int width = 0;
  int height = 0;
};

size_text_t parse_size(const QString& text) {
  const QStringList sides = text.split('x');
  return {sides.value(0).toInt(), sides.value(1).toInt()};
}

void check_published(const QString& captured) {
  const QString published = vgn_control::publishedResolution(captured);
  if (published == captured) {
    return;
  }
  const size_text_t size = parse_size(published);
  require(published == QStringLiteral("%1x%2").arg(size.width).arg(size.height), "what is published is a size");
  const size_text_t told = parse_size(captured);
  const bool fits = told.width <= 1920 && told.height <= 1080;
  require(size.width == (fits ? told.width : (told.width + 1LL) / 2), "the width, or half of it rounded up");
  require(size.height == (fits ? told.height : (told.height + 1LL) / 2), "the height, or half of it rounded up");
}

void check_sizes(const QString& properties) {
  const QString captured = vgn_control::leadingResolution(properties);
  require(properties.startsWith(captured), "a size is what the text begins with");
  require(captured.isEmpty() || captured.count('x') == 1, "a size has two sides");
  require(vgn_control::leadingResolution(captured) == captured, "a size is all of itself");
  check_published(captured);
}

/// The text's first word by hand; null where there is none.
bool is_blocking(std::string_view text) {
  constexpr std::string_view blanks = " \t\n\v\f\r";
  const std::size_t start = std::min(text.find_first_not_of(blanks), text.size());
  return text.substr(start, text.find_first_of(blanks, start) - start) == "1";
}

void check_words(std::string_view text) {
  zyl::dev_options::set(text);
  require(!text.empty() || !zyl::dev_options::contains(""), "an empty text has no word");
  while (!text.empty()) {
    const std::size_t end = std::min(text.find(' '), text.size());
    require(zyl::dev_options::contains(text.substr(0, end)), "each word is an option");
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  require(!zyl::dev_options::contains("a b"), "a blank parts words");
}

void check_process_entry(std::string_view name) {
  const bool number = name.find_first_not_of("0123456789") == std::string_view::npos;
  require(vgn_control::isProcessEntry(name) == number, "a process is a number");
}

}  // namespace

int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  check_sizes(QString::fromUtf8(text.c_str()));
  require(vgn_control::isControlBlocked(text.c_str()) == is_blocking(text.c_str()), "the first word blocks");
  check_words(text);
  check_process_entry(text);
  return 0;
}
