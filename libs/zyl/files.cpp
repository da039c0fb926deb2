#include "zyl/files.h"

#include <sys/stat.h>

#include <cstdio>
#include <fstream>
#include <memory>
#include <utility>
#include <vector>

#include "zyl/exceptions.h"

namespace zyl {
namespace {

constexpr std::size_t chunk_size = 65536;

struct file_close_t {
  void operator()(std::FILE* file) const {
    std::fclose(file);  // NOLINT(cppcoreguidelines-owning-memory): this is its owner's
  }
};
using file_ptr_t = std::unique_ptr<std::FILE, file_close_t>;

bool is_smaller_than(std::FILE* file, std::size_t limit) {
  if (std::fseek(file, 0, SEEK_END) != 0) {
    return false;
  }
  const long size = std::ftell(file);
  return size >= 0 && static_cast<std::size_t>(size) < limit && std::fseek(file, 0, SEEK_SET) == 0;
}

// Files of the kernel tell no size beforehand: what is read is held against the limit as well.
bool read_chunks(std::FILE* file, std::string& text, std::size_t limit) {
  std::vector<char> chunk(chunk_size);
  std::size_t size = 0;
  do {
    size = std::fread(chunk.data(), 1, chunk.size(), file);
    text.append(chunk.data(), size);
  } while (size == chunk.size() && text.size() < limit);
  return std::ferror(file) == 0 && text.size() < limit;
}

const char* failure_text(std::ios::iostate state) {
  if ((state & std::ios::badbit) != 0) {
    return "std::ios::badbit";
  }
  return (state & std::ios::failbit) != 0 ? "std::ios::failbit" : "std::ios::eofbit";
}

[[noreturn]] void fail(const std::string& path, std::ios::iostate state) {
  throw exception_t("Couldn't open the specified file: " + path + " because " + failure_text(state));
}

}  // namespace

bool exists(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0;
}

bool read_file(const std::string& path, std::string& result, std::size_t max_size) {
  const file_ptr_t file(std::fopen(path.c_str(), "r"));
  if (!file || !is_smaller_than(file.get(), max_size)) {
    return false;
  }
  std::string text;
  if (!read_chunks(file.get(), text, max_size)) {
    return false;
  }
  result = std::move(text);
  return true;
}

std::string read_whole_file(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    fail(path, file.rdstate());
  }
  std::string text;
  std::vector<char> chunk(chunk_size);
  while (file) {
    file.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
    text.append(chunk.data(), static_cast<std::size_t>(file.gcount()));
  }
  if (file.bad()) {
    fail(path, file.rdstate());
  }
  return text;
}

}  // namespace zyl
