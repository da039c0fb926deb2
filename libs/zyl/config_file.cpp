#include "zyl/config_file.h"

#include <cstdlib>
#include <fstream>
#include <optional>
#include <sstream>
#include <vector>

#include "zyl/log/module_logger.h"

static auto& module_log = zyl::module_logger("lin_file_utils");
#include "zyl/log/log_bind.h"

namespace zyl {
namespace {

using lines_t = std::vector<std::string>;

lines_t lines_of(std::istream& text) {
  lines_t lines;
  for (std::string line; std::getline(text, line);) {
    lines.push_back(line);
  }
  return lines;
}

std::optional<lines_t> lines_of_file(const std::string& path) {
  std::ifstream file(path);
  return file ? std::optional(lines_of(file)) : std::nullopt;
}

std::string temporary_name(const std::string& path) { return "/tmp/" + path.substr(path.rfind('/') + 1) + ".tmp"; }

bool write_file(const std::string& path, const std::string& content) {
  std::ofstream file(path);
  file << content;
  file.close();
  return !file.fail();
}

bool move_file(const std::string& from, const std::string& to) {
  return std::system(("mv " + from + " " + to).c_str()) == 0;  // NOLINT(cert-env33-c): mv also crosses file systems
}

}  // namespace

bool write_config_file(const std::string& path, const std::string& content) {
  std::istringstream wanted(content);
  if (lines_of_file(path) == lines_of(wanted)) {
    return true;
  }
  const std::string temporary = temporary_name(path);
  if (!write_file(temporary, content) || !move_file(temporary, path)) {
    log_error_s() << "Error writing config file: " << path;
    return false;
  }
  return true;
}

}  // namespace zyl
