#pragma once

#include <event2/event.h>

#include <chrono>
#include <fstream>
#include <sstream>
#include <string>

#include "zyl/event_loop.h"

namespace sim {

/// A loop that a test turns until something holds.
class turning_loop_t {
 public:
  event_base* base() const { return loop.base(); }

  /// False after a generous time.
  template <typename Condition>
  bool turn_until(Condition holds) {
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!holds()) {
      if (std::chrono::steady_clock::now() > limit) {
        return false;
      }
      const timeval pause{0, 1000};
      event_base_loopexit(loop.base(), &pause);
      event_base_dispatch(loop.base());
    }
    return true;
  }

 private:
  zyl::event_loop_t loop;
};

/// The whole text of a file; empty without one.
inline std::string text_of_file(const std::string& path) {
  std::ifstream file(path);
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

}  // namespace sim
