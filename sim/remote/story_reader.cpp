#include "sim/remote/story_reader.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <optional>
#include <string_view>
#include <system_error>

namespace sim {
namespace {

std::optional<story_line_t> parse_line(std::string_view line) {
  const std::size_t actor = line.find('\t');
  const std::size_t text = actor == std::string_view::npos ? actor : line.find('\t', actor + 1);
  story_line_t parsed;
  if (text == std::string_view::npos ||
      std::from_chars(line.data(), line.data() + actor, parsed.time_us).ptr != line.data() + actor) {
    return std::nullopt;
  }
  parsed.actor = line.substr(actor + 1, text - actor - 1);
  parsed.text = line.substr(text + 1);
  return parsed;
}

}  // namespace

story_reader_t::story_reader_t(const std::string& path) : file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {
  if (!file) {
    throw std::system_error(errno, std::generic_category(), "cannot read the story " + path);
  }
}

std::vector<story_line_t> story_reader_t::take() {
  std::array<char, 4096> chunk{};
  for (ssize_t count = 0; (count = read(file.get(), chunk.data(), chunk.size())) > 0;) {
    unread.append(chunk.data(), static_cast<std::size_t>(count));
  }
  std::vector<story_line_t> lines;
  std::size_t start = 0;
  for (std::size_t end = 0; (end = unread.find('\n', start)) != std::string::npos; start = end + 1) {
    if (auto line = parse_line(std::string_view(unread).substr(start, end - start))) {
      lines.push_back(std::move(*line));
    }
  }
  unread.erase(0, start);
  return lines;
}

}  // namespace sim
