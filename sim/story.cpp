#include "sim/story.h"

#include <algorithm>
#include <cerrno>
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

}  // namespace

std::string one_line(std::string_view text) {
  std::string line(text);
  std::replace_if(
      line.begin(), line.end(), [](char c) { return static_cast<unsigned char>(c) < ' ' || c == '\x7f'; }, ' ');
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

void story_t::tell(std::string_view actor, std::string_view text) {
  const std::string line = std::to_string(monotonic_us()) + '\t' + std::string(actor) + '\t' + one_line(text) + '\n';
  const zyl::lock_t lock(mutex);
  if (file) {
    std::fwrite(line.data(), 1, line.size(), file.get());
    std::fflush(file.get());
  }
}

}  // namespace sim
