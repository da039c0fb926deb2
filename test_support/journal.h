#pragma once

#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace test_support {

/// What several doubles were asked to do, one line a call, in the order of the calls. One thread.
class journal_t {
 public:
  /// Writes the pieces as one line, with blanks between.
  template <typename... Pieces>
  void note(const Pieces&... pieces) {
    std::ostringstream line;
    const char* separator = "";
    ((line << separator << pieces, separator = " "), ...);
    lines.push_back(line.str());
  }

  /// What was noted since the last call.
  std::vector<std::string> take() { return std::exchange(lines, {}); }

 private:
  std::vector<std::string> lines;
};

}  // namespace test_support
