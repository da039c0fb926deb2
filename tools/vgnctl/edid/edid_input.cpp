#include "tools/vgnctl/edid/edid_input.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <memory>
#include <stdexcept>

#include "tools/vgnctl/edid/hex_text.h"

namespace vgnctl {
namespace {

constexpr std::string_view decoder_heading = "edid-decode (hex):";
constexpr std::size_t digits_of_base_block = 256;
constexpr std::size_t largest_file = 16U << 20U;

struct file_closer_t {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using file_t = std::unique_ptr<std::FILE, file_closer_t>;

[[noreturn]] void fail(const std::string& path, const char* why) { throw std::runtime_error(path + ": " + why); }

file_t open(const std::string& path, const char* mode) {
  file_t file(std::fopen(path.c_str(), mode));
  if (file == nullptr) {
    fail(path, std::strerror(errno));
  }
  return file;
}

/// The lines up to the first with something else than hex digits and white space.
std::string leading_digits(std::string_view text) {
  std::string digits;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size() - 1);
    const auto of_line = hex_digits_of(text.substr(0, end + 1));
    if (!of_line) {
      break;
    }
    digits += *of_line;
    text.remove_prefix(end + 1);
  }
  return digits;
}

/// The hex digits of the first block that edid-decode has written into `text`; empty if it has not.
std::string decoder_digits(std::string_view text) {
  for (auto at = text.find(decoder_heading); at != std::string_view::npos; at = text.find(decoder_heading)) {
    text.remove_prefix(at + decoder_heading.size());
    if (std::string digits = leading_digits(text); digits.size() >= 2) {
      return digits;
    }
  }
  return {};
}

}  // namespace

std::vector<uint8_t> edid_in(std::string_view content) {
  if (const auto digits = hex_digits_of(content); digits && digits->size() >= digits_of_base_block) {
    return bytes_of_hex(*digits);
  }
  if (const std::string digits = decoder_digits(content); !digits.empty()) {
    return bytes_of_hex(digits);
  }
  return {content.begin(), content.end()};
}

std::string read_file(const std::string& path) {
  const file_t opened = path == "-" ? nullptr : open(path, "rb");
  std::FILE* file = opened != nullptr ? opened.get() : stdin;
  std::string content;
  std::array<char, 4096> part{};
  while (const std::size_t count = std::fread(part.data(), 1, part.size(), file)) {
    content.append(part.data(), count);
    if (content.size() > largest_file) {
      fail(path, "too large for an EDID");
    }
  }
  if (std::ferror(file) != 0) {
    fail(path, std::strerror(errno));
  }
  return content;
}

void write_file(const std::string& path, const std::vector<uint8_t>& bytes) {
  if (path == "-") {
    std::cout.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return;
  }
  file_t file = open(path, "wb");
  const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file.get()) == bytes.size();
  if (std::fclose(file.release()) != 0 || !written) {
    fail(path, std::strerror(errno));
  }
}

}  // namespace vgnctl
