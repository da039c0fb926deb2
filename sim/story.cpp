#include "sim/story.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <system_error>

namespace sim {
namespace {

int64_t monotonic_us() {
  timespec now{};
  clock_gettime(CLOCK_MONOTONIC, &now);
  return int64_t{now.tv_sec} * 1'000'000 + now.tv_nsec / 1000;
}

bool is_control(char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }

}  // namespace

std::string one_line(std::string_view text) {
  std::string line(text);
  std::replace_if(line.begin(), line.end(), is_control, ' ');
  return line;
}

void story_t::closer_t::operator()(std::FILE* open_file) const {
  if (open_file != stdout) {
    std::fclose(open_file);
  }
}

story_t::story_t(const std::string& path) : file(path == "-" ? stdout : std::fopen(path.c_str(), "ae")) {
  if (!file) {
    throw std::system_error(errno, std::generic_category(), "cannot write the story to " + path);
  }
}

void story_t::tell(std::string_view actor, std::string_view text, std::initializer_list<std::string_view> more) {
  const zyl::lock_t lock(mutex);
  if (!file) {
    return;
  }
  std::array<char, 24> time{};
  line.assign(time.data(), std::to_chars(time.begin(), time.end(), monotonic_us()).ptr);
  line += '\t';
  line += actor;
  line += '\t';
  const auto text_start = static_cast<std::ptrdiff_t>(line.size());
  line += text;
  for (const std::string_view piece : more) {
    line += piece;
  }
  std::replace_if(line.begin() + text_start, line.end(), is_control, ' ');
  line += '\n';
  std::fwrite(line.data(), 1, line.size(), file.get());
  std::fflush(file.get());
}

}  // namespace sim
